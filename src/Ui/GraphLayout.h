#pragma once

#include "Base/Text.h"

#include <QPainterPath>
#include <QRectF>

#include <optional>
#include <vector>

/// The positions of a graph's boxes and arrows, in points from the upper left corner. Boxes are in the order of the
/// graph's boxes; arrows are in any order.
struct GraphLayout
{
    struct Arrow
    {
        QPainterPath line; ///< ends at the base of the arrow head
        QPointF tip;
    };

    std::vector<QRectF> boxes;
    std::vector<Arrow> arrows;
};

/// A box to place. Its rows all have the same height and fill the box; the first one is the title. The size is in
/// points.
struct GraphBox
{
    QSizeF size;
    std::size_t rows;
};

/// Lays a graph out with Graphviz's "dot". In `dot` (https://graphviz.org/doc/info/lang.html) box i is the node "t<i>",
/// with the ports "title", "r0", "r1" and so on from top to bottom. Returns nothing if Graphviz fails, for instance
/// without its plugins. Takes a second for some hundred boxes, and can't be cancelled. May run in any thread, but only
/// in one at a time, because the process has one context of Graphviz.
std::optional<GraphLayout> layOutGraph(const CString& dot, const std::vector<GraphBox>& boxes);
