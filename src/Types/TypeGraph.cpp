#include "Types/TypeGraph.h"

#include "Types/TypeStructure.h"

#include <utility>

namespace {

// Returns a text escaped for the label of a record node: https://graphviz.org/doc/info/shapes.html#record. A blank is a
// separator there unless it is escaped.
CString labelText(std::string_view text)
{
    CString label;
    for (const char c : text) {
        if (c == '&') // Graphviz reads entities
            label += "&amp;";
        else if (static_cast<unsigned char>(c) < ' ')
            label += ' ';
        else if (std::string_view("\\\"{}|<> ").find(c) != std::string_view::npos)
            label.append({'\\', c});
        else
            label += c;
    }
    return shownText(label);
}

// Returns the label of a box: fields for the title and the rows, each with its port. "\l" aligns a row to the left.
CString labelOf(const TypeGraph::Box& box)
{
    CString label = "<title> " + labelText(box.title);
    for (std::size_t i = 0; i < box.rows.size(); ++i) {
        const TypeGraph::Row& row = box.rows[i];
        const char* colon = row.name.empty() || row.type.empty() ? "" : " : ";
        label += "|<r" + std::to_string(i) + "> " + labelText(row.name) + colon + labelText(row.type) + "\\l";
    }
    if (box.hidden > 0)
        label += "|<r" + std::to_string(box.rows.size()) + "> ... " + std::to_string(box.hidden) + " more\\l";
    return label;
}

} // namespace

TypeGraph::TypeGraph(const TypeStructure& structure, std::span<const std::uint32_t> types, std::size_t maxRows)
{
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::vector<std::size_t> boxOf(structure.size(), none);
    for (const std::uint32_t type : types) {
        boxOf[type] = boxes.size();
        boxes.push_back({type, CString(shortName(structure.queryFullName(type))), {}, 0});
    }
    std::vector<std::size_t> lastHidden(boxes.size(), none); // per target: the last box with an arrow from hidden parts
    for (std::size_t from = 0; from < boxes.size(); ++from) {
        Box& box = boxes[from];
        for (const TypePart& part : structure.parts(box.type)) {
            const TypeContent content = structure.contentOf(part);
            const std::size_t to = content.type == TypeStructure::kNone ? none : boxOf[content.type];
            const bool isHidden = box.rows.size() == maxRows;
            // One arrow leads from the hidden parts to each box, however many of them have that type.
            if (to != none && (!isHidden || std::exchange(lastHidden[to], from) != from))
                arrows.push_back({from, box.rows.size(), to});
            if (isHidden)
                ++box.hidden;
            else
                box.rows.push_back({CString(part.name), CString(shortName(content.typeName)) + content.repeats});
        }
    }
}

// Ranks go from left to right, so that an arrow leaves a row at its side. The arrow leads to the title of the other
// box.
CString TypeGraph::toDot() const
{
    CString dot = "digraph types {\n    rankdir=LR\n    node [shape=record]\n";
    for (std::size_t i = 0; i < boxes.size(); ++i)
        dot += "    t" + std::to_string(i) + " [label=\"" + labelOf(boxes[i]) + "\"]\n";
    for (const Arrow& arrow : arrows)
        dot += "    t" + std::to_string(arrow.from) + ":r" + std::to_string(arrow.row) + " -> t" +
               std::to_string(arrow.to) + ":title\n";
    return dot + "}\n";
}
