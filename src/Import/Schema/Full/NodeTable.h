#pragma once

#include "Import/Schema/Full/SchemaTree.h"

#include <deque>
#include <utility>

/// What is known of some nodes of a tree, by their indexes. References to values stay valid.
template <class T>
class NodeTable
{
public:
    using Index = SchemaNode::Index;

    explicit NodeTable(const SchemaTree& tree) : places(tree.size()) {}

    /// The value of a node, and whether it is new.
    std::pair<T&, bool> insert(Index node)
    {
        const bool isNew = places[node] == 0;
        if (isNew) {
            values.emplace_back();
            places[node] = static_cast<std::uint32_t>(values.size());
        }
        return {values[places[node] - 1], isNew};
    }

    /// Null if the node has none.
    const T* find(Index node) const { return places[node] == 0 ? nullptr : &values[places[node] - 1]; }

private:
    std::vector<std::uint32_t> places; // 1 more than that among the values; 0: none
    std::deque<T> values;
};
