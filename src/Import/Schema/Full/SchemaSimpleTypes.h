#pragma once

#include "Import/Schema/Full/NodeTable.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <span>

/// Works out the kinds of a schema's simple types, and of the text in its complex types. Each is worked out once,
/// without recursion. A type that can't be resolved, or that is derived from itself, is text.
class SchemaSimpleTypes
{
public:
    using Index = SchemaNode::Index;

    /// The possible values of a text. The constants of an enumeration are a range of all constants. A type that
    /// restricts an enumeration by other facets shares its range.
    struct Value
    {
        bool isThere = false; ///< false for a complex type without text
        SourceTypes::Kind kind = SourceTypes::kindText;
        bool isMixed = false;            ///< the text is between elements
        Index named = 0;                 ///< the type that declares the constants; 0 if it is anonymous
        std::uint32_t firstConstant = 0; ///< of an enumeration
        std::uint32_t constantCount = 0;
    };

    /// Make it after SchemaSet::finish(). The set must outlive this object.
    explicit SchemaSimpleTypes(SchemaSet& set) : set(set), tree(set.queryTree()), values(tree) {}

    /// Returns the value of a simple type, or of the text of a complex type. Notes lists, unions of several kinds and
    /// unresolved references in the set. Throws SourceRefusal beyond a million constants in total.
    Value of(Index type);

    /// A constant of an enumeration, and the number of its documentation; 0 for none.
    struct Constant
    {
        NameTable::Id name;
        std::uint32_t documentation;
    };

    /// Returns the constants of an enumeration, in the order of the source and each once; empty for other values. Valid
    /// until the next of().
    std::span<const Constant> constantsOf(const Value& value) const
    {
        return std::span(constants).subspan(value.firstConstant, value.constantCount);
    }

private:
    struct Part // what a type is made of: another type, or a known value
    {
        Index type = 0;
        Value value;
    };

    // No list of constants begins at this index, because their number is bounded.
    static constexpr std::uint32_t kPending = ~0U; // in firstConstant: the value is not yet known

    bool isMixedType(Index complexType) const;
    Value inherit(Index complexType) const;
    void collectParts(Index type);
    Index derivationOf(Index type) const;
    Part partNamed(SchemaName name, Index from);
    Value valueOf(const Part& part) const;
    Value combine(Index type);
    void noteList(Index type, Index list);
    Value unite(Index type);
    Value narrow(Value base, Index restriction);
    void addConstant(Constant constant);

    SchemaSet& set;
    const SchemaTree& tree;
    NodeTable<Value> values; // includes types in progress, which count as text
    std::vector<Constant> constants;
    std::vector<std::uint32_t> constantSeen; // by name: number of the last list with it
    // The number of the current list of constants. Numbers start at 1; 0 in `constantSeen` means in no list.
    std::uint32_t constantLists = 0;
    std::vector<Part> parts; // of the current type
    std::vector<Index> waiting;
};
