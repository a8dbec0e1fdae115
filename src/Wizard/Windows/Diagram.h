#pragma once

#include "Types/TypeGraph.h"
#include "Ui/GraphLayout.h"

#include <QByteArray>
#include <QFont>
#include <QPalette>
#include <QRectF>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <vector>

class QPainter;

/// The picture of a graph of types: boxes with a title and a row for each part, and arrows between them, in the colours
/// of a palette. It doesn't change after construction. drawBox() and drawArrow() may only be called in the window's
/// thread, draw() in any thread. Screen and file are drawn from the same object, so they show the same.
class Diagram
{
public:
    /// Lays the graph out, which takes a second for some hundred boxes. Empty if Graphviz fails. May run in any thread,
    /// but only one at a time, as layOutGraph(). The first box is the one that the picture is about, and boxes must be
    /// sorted by their distance from it, as TypeStructure::reach() returns them.
    Diagram(const TypeGraph& graph, const QPalette& palette, const QFont& font);

    bool isEmpty() const { return boxes.empty(); }

    /// Returns the area of the whole picture, with a margin. The unit is the point of GraphLayout, which is a pixel at
    /// the scale 1.
    const QRectF& queryArea() const { return area; }

    /// Return the numbers and areas of boxes and arrows, and the type that a box shows, by its number. The area of an
    /// arrow has room for its head.
    std::size_t boxCount() const { return boxes.size(); }
    std::size_t arrowCount() const { return arrows.size(); }
    const QRectF& areaOf(std::size_t box) const { return boxes[box].area; }
    QRectF areaOfArrow(std::size_t arrow) const { return arrows[arrow].line.boundingRect().adjusted(-6, -6, 12, 6); }
    std::uint32_t typeOf(std::size_t box) const { return boxes[box].type; }

    /// Draws the rows of a box that lie in `exposed`. At a small `scale`, texts too small to read become lines. A
    /// chosen box gets a broad frame.
    void drawBox(QPainter& painter, std::size_t box, const QRectF& exposed, double scale, bool isChosen) const
    {
        drawBox(painter, boxes[box], fonts, exposed, scale, isChosen);
    }

    /// Draws an arrow with its head, whatever the scale is.
    void drawArrow(QPainter& painter, std::size_t arrow) const;

    /// Draws everything for a file, with all texts. Reports progress. Throws Cancelled. Uses fonts of its own.
    void draw(QPainter& painter) const;

private:
    // Each thread needs its own fonts, because copies of a QFont share data that must not be used by two threads at
    // once.
    struct Fonts
    {
        explicit Fonts(const QFont& like);

        QFont text;
        QFont title;
    };

    // A row of a box: a name at its left end, a type at its right end.
    struct Row
    {
        QString name; // elided to fit
        QString type;
        double typeWidth;
    };

    // A box with its texts. `area` has only a size until Graphviz has placed the box.
    struct Box
    {
        std::uint32_t type;
        QRectF area;
        std::vector<Row> rows; // the first is the title
    };

    // Box sizes depend on fonts, so they are measured before Graphviz places the boxes.
    Box measure(const TypeGraph::Box& box) const;
    void addPlainArrow(const TypeGraph::Arrow& arrow);
    void drawBox(QPainter& painter, const Box& box, const Fonts& fonts, const QRectF& exposed, double scale,
                 bool isChosen) const;
    // Draws a row in the painter's current font.
    void drawRow(QPainter& painter, const Row& row, const QRectF& place, double scale) const;

    Fonts fonts;
    // Of boxes and their names, types of rows, frames, titles, arrows, and the frame of a chosen box.
    QColor base, text, quiet, frame, head, line, chosen;
    double rowHeight; // the same for all rows, titles included
    std::vector<Box> boxes;
    std::vector<GraphLayout::Arrow> arrows; // in no particular order
    QRectF area;
};

/// The maximum width and height of a PNG in pixels.
constexpr int kMaxPixels = 16000;

/// Returns the size of a diagram as a PNG: twice its own, for printing, or less at the limits of viewers. Sets `scale`
/// to the factor.
QSize pngSize(const Diagram& diagram, double& scale);

/// Return a diagram as a file. May run in any thread. Report progress. Throw Cancelled; drawPng() also throws
/// std::runtime_error without memory for the picture. The diagram must not be empty.
QByteArray drawPng(const Diagram& diagram);
QByteArray drawSvg(const Diagram& diagram, const QString& title);
