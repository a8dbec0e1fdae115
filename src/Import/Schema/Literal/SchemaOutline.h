#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"
#include "Import/Schema/Literal/SchemaKinds.h"
#include "Import/Schema/SchemaStatements.h"

#include <array>
#include <optional>
#include <unordered_set>
#include <vector>

/// One declaration of a schema document: an element, an attribute or a complex type. Texts are views into the outline.
struct SchemaDeclaration
{
    /// What a repeated declaration is marked with.
    static constexpr std::string_view kMark = "*";

    /// Its `name`, or its `ref` where it has no name.
    std::string_view name() const { return nameAndMark.substr(0, nameAndMark.size() - kMark.size()); }

    /// The name, followed by the mark when it repeats.
    std::string_view markedName() const { return repeats ? nameAndMark : name(); }

    std::string_view nameAndMark = kMark; ///< kept together, so that either is a view
    std::string_view type;      ///< its `type`; without one "AnonymousType", or empty when it is read through `ref`
    bool hasAttributes = false; ///< any at all
    bool hasType = false;       ///< a `type` is written
    bool isReference = false;   ///< it has no name of its own
    bool repeats = false;       ///< its `maxOccurs` is greater than 1 or "unbounded"
    bool isAbstract = false;    ///< it says so
    bool isSingle = false;      ///< it doesn't repeat when it is declared twice
    bool isInRepeated = false;  ///< it stands in a group that repeats
    std::uint32_t line = 0;     ///< in its document, from 1
    std::uint32_t column = 0;   ///< the same; 0 if unknown
    SchemaKinds::Index simpleType = SchemaKinds::kNone; ///< the one that stands inside it
};

/// The declarations of one schema document, as far as they are read: what is called xsd:element, xs:element and so on,
/// by these literal names, at any depth. It is filled while the document is read; searches answer what a walk over the
/// document would, without walking.
class SchemaOutline : public XmlHandler
{
public:
    enum Tag
    {
        element,
        attribute,
        complexType
    };

    /// A place in the outline; they rise in document order. kRoot is the document's root element, whatever it is.
    using Index = unsigned;
    static constexpr Index kRoot = 0;
    static constexpr Index kNone = ~0U;

    /// What the schema includes, imports or redefines.
    struct Location
    {
        std::string_view text; ///< the schemaLocation
        SourcePlace place;
    };

    /// `file` is the document's number in the report. Its simple types go into `kinds`.
    SchemaOutline(SourceReport& report, std::uint32_t file, SchemaKinds& kinds);

    void scope(const XmlScope& scope) override;
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    void entityLeftOut(std::string_view name, XmlPlace place) override { statements.entityLeftOut(name, place); }
    bool wantsText() const override { return false; }
    bool wantsScopes() const override { return true; }

    /// Reports what was found in the document, when it is a part of the schema.
    void finish() { statements.finish(); }

    SourcePlace placeOf(Index at) const { return {file, entries[at].declaration.line, entries[at].declaration.column}; }

    /// How many declarations there are, and the root.
    std::size_t size() const { return entries.size(); }

    const SchemaDeclaration& operator[](Index at) const { return entries[at].declaration; }

    /// The first descendant, at any depth, called "xsd:" + tag; if there is none, the first one called "xs:" + tag.
    Index getNode(Index from, Tag tag) const;

    /// The first direct child of either name.
    Index getChildNode(Index parent, Tag tag) const { return entries[parent].firstChild[tag]; }

    /// The first following sibling of either name and of the same tag.
    Index getNextSibling(Index from) const { return entries[from].nextSibling; }

    /// True when the document holds a complex type, at any depth.
    bool holdsTypes() const { return !mainTypes().empty(); }

    /// True when one of the xsd:complexType of the document, or of its xs:complexType where it has none of those, is
    /// called `name`.
    bool holdsTypeNamed(std::string_view name) const;

    /// The complex type at the top that a declaration names, or the one inside it; kNone if there is none.
    Index typeOf(Index declaration) const;

    /// Where documents are that the schema includes, imports or redefines, in document order.
    const std::vector<Location>& locations() const { return schemaLocations; }

    /// Notes that an element or attribute was taken into account.
    void markRead(Index at) const { entries[at].isRead = true; }

    /// Reports the elements and attributes that were not.
    void reportUnread(SourceReport& report) const;

    bool hasTargetNamespace() const { return isTargeted; }

    /// Gives back what only reading needs; what was read refers to the texts.
    void keepTextsOnly();

private:
    static constexpr unsigned kTags = 3;

    struct Entry
    {
        SchemaDeclaration declaration;
        Index end = 0; // behind the last descendant
        Index nextSibling = kNone;
        Tag tag = complexType;
        mutable bool isRead = false;
        std::array<Index, kTags> firstChild{kNone, kNone, kNone};
    };

    // An element of the document that is still open.
    struct Level
    {
        Index place = kNone; // kNone for one that is no declaration
        std::array<Index, kTags> lastChild{kNone, kNone, kNone};
        SchemaKinds::Index simpleType = SchemaKinds::kNone; // the one that it is, or says something of
        bool isChoice = false;                              // or a group inside one
        bool isRepeated = false;                            // the same
    };

    void startRoot(XmlAttributes attributes);
    void noteLocation(XmlName name, XmlAttributes attributes);
    SchemaDeclaration readDeclaration(XmlAttributes attributes);
    std::string_view keepName(std::string_view name);
    Index enter(Tag tag, XmlAttributes attributes);
    std::size_t prefixOf(XmlName name);
    void notePassedOver(XmlName name, SchemaTag tag, Level& level);
    void noteSimpleType(SchemaTag tag, Level& level);
    void noteDeclaration(SchemaTag tag);
    bool saysMixed() const;
    CString nameAround() const;
    const std::vector<Index>& mainTypes() const;

    Arena texts;
    std::vector<Entry, LargePages<Entry>> entries;
    std::array<std::array<std::vector<Index>, kTags>, 2> places; // by prefix, "xsd:" first, and by tag; rising
    std::vector<Level> open;
    std::vector<Location> schemaLocations;
    SchemaStatements statements;
    SchemaKinds& kinds;
    std::uint32_t file;
    const char* lastPrefix = nullptr; // equal ones are one
    std::size_t lastPrefixAt;
    bool isTargeted = false;
    mutable std::optional<std::unordered_set<std::string_view, KeyHash>> typeNames;
};
