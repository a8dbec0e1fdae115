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
    /// The mark of a repeated declaration.
    static constexpr std::string_view kMark = "*";

    /// The type of a declaration with a name and without a `type`.
    static constexpr std::string_view kAnonymousType = "AnonymousType";

    /// Returns the `name`, else the `ref`.
    std::string_view name() const { return nameAndMark.substr(0, nameAndMark.size() - kMark.size()); }

    /// Returns the name, with the mark if it repeats.
    std::string_view markedName() const { return repeats ? nameAndMark : name(); }

    std::string_view nameAndMark = kMark; ///< in one text, so that both are views
    std::string_view type;    ///< the `type`; without one kAnonymousType, or empty if it is read through `ref`
    std::uint32_t line = 0;   ///< counted from 1
    std::uint32_t column = 0; ///< counted from 1; 0 if unknown
    SchemaKinds::Index simpleType = SchemaKinds::kNone; ///< the simple type inside
    bool hasAttributes : 1 = false;                     ///< of any kind
    bool hasType : 1 = false;                           ///< has a `type`
    bool isReference : 1 = false;                       ///< has no `name`
    bool repeats : 1 = false;                           ///< `maxOccurs` is greater than 1 or "unbounded"
    bool isAbstract : 1 = false;                        ///< `abstract` is true
    bool isSingle : 1 = false;                          ///< doesn't repeat if declared twice
    bool isInRepeated : 1 = false;                      ///< in a repeated group
};

/// The declarations of one schema document that the literal reading supports: xsd:element, xs:element and so on, by
/// these literal names, at any depth. It is filled while the document is parsed. Searches return what a walk over the
/// document would, without a walk: types nest, so walks below each of them would be quadratic in the depth.
class SchemaOutline : public XmlHandler
{
public:
    enum Tag : std::uint8_t
    {
        element,
        attribute,
        complexType
    };

    /// The index of a declaration, in document order. kRoot is the document's root element, whatever its name.
    using Index = unsigned;
    static constexpr Index kRoot = 0;
    static constexpr Index kNone = ~0U;

    /// A document that the schema includes, imports or redefines.
    struct Location
    {
        std::string_view text; ///< the schemaLocation
        SourcePlace place;
    };

    /// `file` is the document's number in the report. Simple types are added to `kinds`. Both objects must live as long
    /// as the outline. If the report holds constructs back, those of the document get their components.
    SchemaOutline(SourceReport& report, std::uint32_t file, SchemaKinds& kinds);

    /// Makes room for the declarations of a document of `size` bytes at once. Growing step by step would copy them and
    /// touch twice the memory.
    void reserve(std::size_t size) { entries.reserve(size / kBytesOfADeclaration); }

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override;
    void entityLeftOut(std::string_view name, XmlPlace place) override { statements.entityLeftOut(name, place); }
    bool wantsText() const override { return false; }

    /// Reports the findings in the document. Call it if the document is part of the schema.
    void finish() { statements.finish(); }

    /// The component of simple types and of members of substitution groups, which other types may need.
    static constexpr SourceReport::Component kShared = 1;

    /// Returns the number in the report for a top-level declaration of that name.
    static SourceReport::Component componentOf(std::string_view name)
    {
        return std::max<SourceReport::Component>(keyHash(name), kShared + 1);
    }

    /// Makes a top-level declaration the component that following constructs belong to.
    void enterComponent(SourceReport& report, Index at) const
    {
        report.enter(holds ? componentOf(entries[at].declaration.name()) : 0);
    }

    /// Returns the place of a declaration in the source.
    SourcePlace placeOf(Index at) const { return {file, entries[at].declaration.line, entries[at].declaration.column}; }

    /// Returns the number of declarations, the root included.
    std::size_t size() const { return entries.size(); }

    /// Returns a declaration. Valid until keepTextsOnly(); its texts as long as the outline.
    const SchemaDeclaration& operator[](Index at) const { return entries[at].declaration; }

    /// Returns what a declaration is. The root counts as a complex type.
    Tag tagOf(Index at) const { return entries[at].tag; }

    /// Returns the index after the last descendant.
    Index endOf(Index at) const { return entries[at].end; }

    /// Returns the first descendant, at any depth, named "xsd:" + tag; if there is none, the first named "xs:" + tag;
    /// else kNone.
    Index getNode(Index from, Tag tag) const;

    /// Returns the first child with either prefix; kNone if there is none.
    Index getChildNode(Index parent, Tag tag) const { return entries[parent].firstChild[tag]; }

    /// Returns the next sibling with either prefix and the same tag; kNone if there is none.
    Index getNextSibling(Index from) const { return entries[from].nextSibling; }

    /// Returns whether the document has a complex type, at any depth.
    bool holdsTypes() const { return !mainTypes().empty(); }

    /// Returns whether an xsd:complexType is named `name`; in a document without any, whether an xs:complexType is.
    bool holdsTypeNamed(std::string_view name) const;

    /// Returns the complex type that a declaration names or holds; kNone if there is none. A named one must be at the
    /// top; the search is linear.
    Index typeOf(Index declaration) const;

    /// Returns the documents that the schema includes, imports or redefines, in document order.
    const std::vector<Location>& locations() const { return schemaLocations; }

    /// Records that an element or attribute was used.
    void markRead(Index at) const { entries[at].isRead = true; }

    /// Reports the elements and attributes that were not used.
    void reportUnread(SourceReport& report) const;

    /// Returns whether the root has a targetNamespace.
    bool hasTargetNamespace() const { return isTargeted; }

    /// Frees everything except the texts, which the table's entries refer to. Called before the model is made, so that
    /// not both are in memory. That reduces the peak of a large schema by a seventh to a fifth.
    void keepTextsOnly();

private:
    static constexpr unsigned kTags = 3;
    static constexpr std::size_t kBytesOfADeclaration = 48; // a low estimate: unused room is never touched

    // A declaration with the data for searches. Entries are in document order, so the descendants of one are those
    // after it, before `end`.
    struct Entry
    {
        SchemaDeclaration declaration;
        Index end = 0; // one past the last descendant
        Index nextSibling = kNone;
        std::array<Index, kTags> firstChild{kNone, kNone, kNone};
        Tag tag = complexType;
        mutable bool isRead = false;
    };

    // An open element of the document, declaration or not. Siblings are linked in each of them, but only a declaration
    // keeps its first children.
    struct Level
    {
        Index place = kNone; // kNone if it is not a declaration
        std::array<Index, kTags> lastChild{kNone, kNone, kNone};
        SchemaKinds::Index simpleType = SchemaKinds::kNone; // the type that it is, or that it contributes to
        bool isChoice = false;                              // a choice itself, not a group inside one
        bool isRepeated = false;                            // repeats, or a group inside one that does
    };

    void notePrefixes(const XmlScope& scope);
    SourceReport::Component componentOf(XmlName name, XmlAttributes attributes) const;
    void noteLocation(std::string_view statement);
    SchemaDeclaration readDeclaration(XmlAttributes attributes);
    std::string_view keepName(std::string_view name);
    Index enter(Tag tag, XmlAttributes attributes);
    void noteSkipped(XmlName name, SchemaTag tag, Level& level);
    void noteSimpleType(SchemaTag tag, Level& level);
    void noteDeclaration(SchemaTag tag);
    bool isMixed() const;
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
    const bool holds; // the report holds constructs back
    bool isTargeted = false;
    // Made at the first holdsTypeNamed().
    mutable std::optional<std::unordered_set<std::string_view, KeyHash>> typeNames;
};
