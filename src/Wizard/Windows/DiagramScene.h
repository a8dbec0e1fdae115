#pragma once

#include "Types/TypeGraph.h"

#include <QFont>
#include <QGraphicsScene>
#include <QPalette>

struct GraphBox;
struct GraphLayout;

/// The picture of a graph of types: boxes with a title and a row for each part, and arrows between them, in the tones
/// of a palette.
class DiagramScene : public QGraphicsScene
{
public:
    /// Empty where the graph can't be laid out.
    DiagramScene(const TypeGraph& graph, const QPalette& palette, const QFont& font);

    /// Where the first box is.
    const QRectF& queryStart() const { return start; }

private:
    GraphBox measure(const TypeGraph::Box& box) const;
    void drawBox(const TypeGraph::Box& box, const QRectF& area);
    void drawRow(const TypeGraph::Row& row, const QRectF& area);
    void drawText(const QString& text, const QFont& font, const QColor& tone, const QRectF& area, bool right);
    void drawArrow(const QPainterPath& line, const QPointF& tip);
    void drawPlainArrow(const TypeGraph::Arrow& arrow, const GraphLayout& layout);

    QPalette palette;
    QFont font;
    QFont titleFont;
    double rowHeight;
    QRectF start;
};
