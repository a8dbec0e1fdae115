#pragma once

#include "Base/Progress.h"
#include "Import/Schema/Full/SchemaContents.h"
#include "Import/Schema/Full/SchemaSimpleTypes.h"

#include <compare>
#include <map>
#include <unordered_set>

/// Makes types from a schema: the records, enumerations and elements of its sources, and all that these reach. Make it
/// after SchemaSet::finish(); set and types must outlive this object. Notes are added to the set; the caller reports
/// them.
class SchemaTypes
{
public:
    SchemaTypes(SchemaSet& set, SourceTypes& types) :
        set(set), tree(set.queryTree()), types(types), simple(set), contents(set), records(tree)
    {}

    /// Reads the components of `sources`, as SchemaSet::finish() returns them. `roots` are names of further elements
    /// and complex types to read, from any document; names without a component are ignored. The elements of `messages`
    /// become main types. Throws SourceRefusal if a bound is exceeded. Call either this or readAlone(), once.
    void read(const std::vector<SchemaSet::Source>& sources, const std::vector<CString>& roots,
              const std::vector<SchemaSet::Message>& messages);

    /// Reads only these components and what they reach, and marks that in the set. Used to find the constructs to
    /// report.
    void readAlone(const std::vector<SchemaNode::Index>& wanted);

    /// Returns the component of a candidate for the main type, by its number among the candidates that this object
    /// added.
    SchemaNode::Index componentOf(SourceTypes::Index candidate) const { return candidates[candidate]; }

private:
    using Index = SchemaNode::Index;
    using Value = SchemaSimpleTypes::Value;

    // The type of a declaration: a complex type or a value. Neither if the declaration has no type.
    struct Declared
    {
        Index complexType = 0;
        Value value;
        std::uint32_t documentation = 0; // of the type
    };

    // A record whose fields are not yet read.
    struct Pending
    {
        Index type;
        SourceTypes::Index record;
    };

    // The named types derived from a type directly, in order of declaration.
    struct Derived
    {
        std::vector<Index> types;
        unsigned ways = 0; // the flags that block them
    };

    // A type with others that a message may choose instead.
    struct Choice
    {
        Index node;       // the abstract type, or the element with type alternatives
        unsigned blocked; // flags of the derivations that the element doesn't allow

        // NOLINTNEXTLINE(modernize-use-nullptr): a false positive in version 14
        auto operator<=>(const Choice&) const = default;
    };

    void readPending();
    void readComponent(Index component, SourceTypes::Index source);
    void addCandidate(Index component, SourceTypes::Index source);
    SourceTypes::Index spaceOf(Index node) { return types.spaceOf(tree.text(tree.documentOf(node).space)); }
    void readFields(Pending pending);
    SourceTypes::Index choiceOf(const Declared& type, Index declaration);
    void readChoice(SourceTypes::Index choice);
    void readAlternatives(SourceTypes::Index choice);
    void readDerived(SourceTypes::Index choice, Index base);
    const Derived& derivedFrom(Index type);
    void collectDerived();
    Declared declared(Index declaration);
    SourceTypes::Type typeOf(const Declared& declared, Index declaration, NameTable::Id fieldName,
                             SourceTypes::Index home);
    SourceTypes::Type typeOf(const Value& value, Index declaration, NameTable::Id fieldName);
    SourceTypes::Type recordOf(Index complexType, SourceTypes::Index home);
    std::string_view keep(NameTable::Id name);
    std::string_view keepDocumentation(std::uint32_t documentation);

    SchemaSet& set;
    const SchemaTree& tree;
    SourceTypes& types;
    SchemaSimpleTypes simple;
    SchemaContents contents;
    std::unordered_map<Index, Derived> derived; // by base type
    bool isDerivedCollected = false;
    std::unordered_map<Index, SourceTypes::Index> messageNumbers; // number of the message by element
    std::vector<Choice> choices;
    std::map<Choice, SourceTypes::Index> choiceNumbers;
    std::unordered_set<Index> reported;   // derived types
    NodeTable<SourceTypes::Type> records; // by complex type; text for one that holds nothing
    std::vector<Pending> pending;
    std::vector<Index> candidates; // the component of each
    NumberTable enumerations;      // by first constant and name
    // Copies of names and documentation in `types`, by number; empty if not yet copied.
    std::vector<std::string_view> keptNames;
    std::vector<std::string_view> keptDocumentations;
    // Parts of the record or enumeration being read. They are members so that their memory is reused.
    std::vector<SchemaField> copiedFields;
    std::vector<SourceTypes::Field> fields;
    std::vector<SourceTypes::Constant> constants;
    CancelPoint cancelPoint{4096}; // passed at each field
};
