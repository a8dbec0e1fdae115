#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"
#include "Import/SourceReport.h"
#include "Xml/XmlParser.h"

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
    std::uint32_t line = 0;     ///< in its document, from 1
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
        std::uint32_t line;
    };

    /// `file` is the document's number in the import's report.
    explicit SchemaOutline(std::uint32_t file);

    void scope(const XmlScope& scope) override { line = static_cast<std::uint32_t>(scope.line); }
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    bool wantsText() const override { return false; }
    bool wantsScopes() const override { return true; }

    SourcePlace placeOf(Index at) const { return {file, entries[at].declaration.line}; }

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
        Index place; // kNone for one that is no declaration
        std::array<Index, kTags> lastChild{kNone, kNone, kNone};
    };

    void startRoot(XmlAttributes attributes);
    void noteLocation(XmlName name, XmlAttributes attributes);
    SchemaDeclaration readDeclaration(XmlAttributes attributes);
    std::string_view keepName(std::string_view name);
    Index enter(Tag tag, XmlAttributes attributes);
    const std::vector<Index>& mainTypes() const;

    Arena texts;
    std::vector<Entry> entries;
    std::array<std::array<std::vector<Index>, kTags>, 2> places; // by prefix, "xsd:" first, and by tag; rising
    std::vector<Level> open;
    std::vector<Location> schemaLocations;
    std::uint32_t file;
    std::uint32_t line = 0; // of the element that begins
    bool isTargeted = false;
    mutable std::optional<std::unordered_set<std::string_view, KeyHash>> typeNames;
};
