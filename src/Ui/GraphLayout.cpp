#include "Ui/GraphLayout.h"

#include <algorithm>
#include <cmath>
#include <graphviz/cgraph.h>
#include <graphviz/gvc.h>
#include <memory>

// Graphviz only computes positions. Nodes and edges come from the text of the graph, sizes from Qt, which draws the
// boxes with its own fonts. Positions are read from the graph's records through the macros of its library (GD_bb,
// ND_coord, ED_spl).
namespace {

struct CloseGraph
{
    void operator()(Agraph_t* graph) const { agclose(graph); }
};

// Sets an attribute. Graphviz takes constant texts as char*.
void set(void* object, const char* name, const CString& value, const char* otherwise = "")
{
    agsafeset(object, const_cast<char*>(name), const_cast<char*>(value.c_str()), const_cast<char*>(otherwise));
}

// Returns the node of a box; it must exist, because 0 forbids agnode() to create one.
Agnode_t* nodeOf(Agraph_t* graph, std::size_t box)
{
    return agnode(graph, const_cast<char*>(("t" + std::to_string(box)).c_str()), 0);
}

// Gives a node the size of its box. The rows only serve as ports, so their texts need no fonts.
void shape(Agnode_t* node, const GraphBox& box)
{
    constexpr double pointsPerInch = 72;
    CString ports = "<title>";
    for (std::size_t row = 0; row + 1 < box.rows; ++row)
        ports += "|<r" + std::to_string(row) + ">";
    set(node, "label", ports);
    set(node, "fontsize", "1");
    set(node, "fixedsize", "true");
    set(node, "width", std::to_string(box.size.width() / pointsPerInch));
    set(node, "height", std::to_string(box.size.height() / pointsPerInch));
}

// Distributes leaf boxes over several columns, because many of them in one column would make a tall picture. The result
// is about as wide as high. A leaf has one arrow to it and none from it. The "minlen" of its arrow selects its column.
void spreadLeaves(Agraph_t* graph, const std::vector<GraphBox>& boxes)
{
    std::vector<Agedge_t*> leafEdges;
    double height = 0, width = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        Agnode_t* node = nodeOf(graph, i);
        if (agdegree(graph, node, 1, 0) != 1 || agdegree(graph, node, 0, 1) != 0)
            continue;
        leafEdges.push_back(agfstin(graph, node));
        height += boxes[i].size.height();
        width = std::max(width, boxes[i].size.width());
    }
    const int columns = leafEdges.empty() ? 1 : std::max(1, static_cast<int>(std::sqrt(height / width)));
    for (std::size_t i = 0; i < leafEdges.size(); ++i)
        set(leafEdges[i], "minlen", std::to_string(1 + static_cast<int>(i) % columns), "1");
}

// Converts a point. Graphviz's y axis starts at the lower edge and points upwards.
QPointF placeOf(const pointf& point, double height)
{
    return {point.x, height - point.y};
}

// A curve is a list of 3 n + 1 points: the start, then two control points and an end for each piece. With an arrow
// head, it ends at the head's base, and `ep` is the tip.
GraphLayout::Arrow arrowOf(const bezier& curve, double height)
{
    const auto point = [&](int i) { return placeOf(curve.list[i], height); };
    QPainterPath line(point(0));
    for (int i = 1; i + 2 < curve.size; i += 3)
        line.cubicTo(point(i), point(i + 1), point(i + 2));
    return {line, curve.eflag ? placeOf(curve.ep, height) : line.currentPosition()};
}

// Reads the positions before gvFreeLayout() frees them. An edge without a route has no curves.
GraphLayout read(Agraph_t* graph, const std::vector<GraphBox>& boxes)
{
    GraphLayout layout;
    const double height = GD_bb(graph).UR.y;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        QRectF area({}, boxes[i].size);
        area.moveCenter(placeOf(ND_coord(nodeOf(graph, i)), height));
        layout.boxes.push_back(area);
    }
    for (Agnode_t* node = agfstnode(graph); node; node = agnxtnode(graph, node))
        for (Agedge_t* edge = agfstout(graph, node); edge; edge = agnxtout(graph, edge))
            if (const splines* curves = ED_spl(edge))
                for (int i = 0; i < curves->size; ++i)
                    layout.arrows.push_back(arrowOf(curves->list[i], height));
    return layout;
}

} // namespace

std::optional<GraphLayout> layOutGraph(const CString& dot, const std::vector<GraphBox>& boxes)
{
    agseterr(AGMAX); // Graphviz would write messages to standard error
    // Holds plugins and fonts. Never freed: the plugin that measures texts compares the next font name with the last
    // one, by a pointer into the earlier context.
    static GVC_t* const context = gvContext();
    const std::unique_ptr<Agraph_t, CloseGraph> graph(agmemread(dot.c_str()));
    if (!context || !graph)
        return {};
    for (std::size_t i = 0; i < boxes.size(); ++i)
        shape(nodeOf(graph.get(), i), boxes[i]);
    spreadLeaves(graph.get(), boxes);
    // Inches between the columns.
    set(graph.get(), "ranksep", "0.9");
    // Limits the rounds of the optimisation for each box: good positions suffice if the best ones take long to find.
    for (const char* rounds : {"nslimit", "nslimit1"})
        set(graph.get(), rounds, "2");
    set(graph.get(), "mclimit", "0.5");
    if (gvLayout(context, graph.get(), "dot") != 0)
        return {};
    GraphLayout layout = read(graph.get(), boxes);
    gvFreeLayout(context, graph.get());
    return layout;
}
