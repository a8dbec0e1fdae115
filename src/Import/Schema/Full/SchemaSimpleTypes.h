#pragma once

#include "Import/Schema/Full/NodeTable.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <span>

/// The kinds of a schema's simple types, and of the text in its complex ones: each worked out once, without recursion.
class SchemaSimpleTypes
{
public:
    using Index = SchemaNode::Index;

    struct Value
    {
        bool isThere = false; ///< false for a complex type that holds no text
        SourceTypes::Kind kind = SourceTypes::kindText;
        bool isMixed = false;            ///< it stands between elements
        Index named = 0;                 ///< the type that lists the constants; 0 where it has no name
        std::uint32_t firstConstant = 0; ///< for an enumeration
        std::uint32_t constantCount = 0;
    };

    explicit SchemaSimpleTypes(SchemaSet& set) : set(set), tree(set.queryTree()), values(tree) {}

    /// What a simple type is, or the text of a complex type.
    Value of(Index type);

    std::span<const NameTable::Id> constantsOf(const Value& value) const
    {
        return std::span(constants).subspan(value.firstConstant, value.constantCount);
    }

    /// The documentation of each of them; 0 for none.
    std::span<const std::uint32_t> documentationsOf(const Value& value) const
    {
        return std::span(documentations).subspan(value.firstConstant, value.constantCount);
    }

private:
    struct Part // of which a type is made: another one, or a value that is known
    {
        Index type = 0;
        Value value;
    };

    static constexpr std::uint32_t kInHand = ~0U; // as the first constant: the value is still to come

    bool saysMixed(Index complexType) const;
    Value inherit(Index complexType) const;
    void collectParts(Index type);
    Index derivationOf(Index type) const;
    Part partNamed(SchemaName name, Index from);
    Value valueOf(const Part& part) const;
    Value combine(Index type);
    void noteList(Index type, Index list);
    Value unite(Index type);
    Value narrow(Value base, Index restriction);
    void addConstant(NameTable::Id constant, std::uint32_t documentation);

    SchemaSet& set;
    const SchemaTree& tree;
    NodeTable<Value> values; // also of those in hand, which count as text
    std::vector<NameTable::Id> constants;
    std::vector<std::uint32_t> documentations; // of the constants
    std::vector<std::uint32_t> constantSeen;   // by name: the list in hand when it was met
    std::uint32_t constantLists = 0;
    std::vector<Part> parts; // of the type in hand
    std::vector<Index> waiting;
};
