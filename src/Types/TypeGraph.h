#pragma once

#include "Base/Text.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class TypeStructure;

/// Types as boxes with a row for each part, and an arrow from each row to the box of its type. Tables and arrays are
/// not drawn: the row's type gets a "*" for a table and the size in brackets for an array. Only arrows between the
/// given types are in it. The texts are copies, so the graph outlives the structure and can be laid out in another
/// thread.
struct TypeGraph
{
    struct Row
    {
        CString name; ///< empty for a component
        CString type; ///< without its folder; empty for a constant
    };

    struct Box
    {
        std::uint32_t type; ///< its number in the structure
        CString title;
        std::vector<Row> rows;
        std::size_t hidden; ///< number of parts without a row; their arrows start at a row after the last
    };

    struct Arrow
    {
        std::size_t from; ///< index of a box
        std::size_t row;  ///< index of its row; rows.size() for hidden parts
        std::size_t to;   ///< index of a box
    };

    /// Builds the graph of `types`, in that order, each at most once. A box has at most `maxRows` rows.
    TypeGraph(const TypeStructure& structure, std::span<const std::uint32_t> types, std::size_t maxRows);

    /// Returns the graph in the DOT language (https://graphviz.org/doc/info/lang.html). Box i is the node "t<i>", with
    /// a port "title" and a port "r<j>" for its row j. Any name becomes a valid label.
    CString toDot() const;

    std::vector<Box> boxes;
    std::vector<Arrow> arrows;
};
