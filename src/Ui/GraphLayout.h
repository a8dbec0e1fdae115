#pragma once

#include "Base/Text.h"

#include <QPainterPath>
#include <QRectF>

#include <optional>
#include <vector>

/// Where the boxes and arrows of a graph go, in points from the upper left corner.
struct GraphLayout
{
    struct Arrow
    {
        QPainterPath line; ///< ends at the foot of the head
        QPointF tip;
    };

    std::vector<QRectF> boxes;
    std::vector<Arrow> arrows;
};

/// A box to place: as high as its rows together, which are all of one height and of which the first is the title.
struct GraphBox
{
    QSizeF size;
    std::size_t rows;
};

/// Lays a graph out with Graphviz's "dot". In `dot` (https://graphviz.org/doc/info/lang.html) box i is the node "t<i>",
/// with the ports "title" and "r0" and so on from top to bottom. Nothing where Graphviz can't do it, as without its
/// plugins.
std::optional<GraphLayout> layOutGraph(const CString& dot, const std::vector<GraphBox>& boxes);
