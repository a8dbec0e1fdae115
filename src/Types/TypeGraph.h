#pragma once

#include "Base/Text.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class TypeStructure;

/// Types as boxes with a row for each part, and an arrow from every row to the box of the type that it holds. What
/// repeats has a "*" behind its type, an array its size in brackets; the tables and arrays themselves are not drawn
/// between the two.
struct TypeGraph
{
    struct Row
    {
        CString name; ///< "" for the component of a table or an array
        CString type; ///< "" for a constant; without its folder
    };

    struct Box
    {
        std::uint32_t type; ///< number in the structure
        CString title;
        std::vector<Row> rows;
        std::size_t hidden; ///< parts for which there is no row; their arrows start at a row behind the last one
    };

    struct Arrow
    {
        std::size_t from; ///< box
        std::size_t row;  ///< of it, its rows.size() for the hidden ones
        std::size_t to;   ///< box
    };

    /// The graph of `types`, in their order. A box has at most `maxRows` rows.
    TypeGraph(const TypeStructure& structure, std::span<const std::uint32_t> types, std::size_t maxRows);

    /// The graph in the DOT language (https://graphviz.org/doc/info/lang.html): box i is the node "t<i>", its title the
    /// port "title", its row i the port "r<i>".
    CString toDot() const;

    std::vector<Box> boxes;
    std::vector<Arrow> arrows;
};
