#pragma once

#include "Import/Schema/Full/SchemaTree.h"

#include <deque>
#include <utility>

/// A table of values for the few nodes of a tree that are types, by their index. An array of places is used, because it
/// is faster than a hash table, and each field looks its type up. It has a place for each node that the tree has when
/// the table is made, so make the table when all documents are read. References to values stay valid.
template <class T>
class NodeTable
{
public:
    using Index = SchemaNode::Index;

    explicit NodeTable(const SchemaTree& tree) : places(tree.size()) {}

    /// Returns the value of a node, added if it is new, and whether it is.
    std::pair<T&, bool> insert(Index node)
    {
        const bool isNew = places[node] == 0;
        if (isNew) {
            values.emplace_back();
            places[node] = static_cast<std::uint32_t>(values.size());
        }
        return {values[places[node] - 1], isNew};
    }

    /// Returns the value of a node; null if none was inserted.
    const T* find(Index node) const { return places[node] == 0 ? nullptr : &values[places[node] - 1]; }

private:
    std::vector<std::uint32_t> places; // index in `values` plus 1; 0 if the node has none
    std::deque<T> values;
};
