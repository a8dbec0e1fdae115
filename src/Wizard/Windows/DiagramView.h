#pragma once

#include <QGraphicsView>

#include <cstddef>
#include <memory>
#include <optional>

class Diagram;

/// A view of a diagram. The wheel, + and - zoom; 0 shows the whole picture, 1 its own size. Dragging, arrows, Page Up
/// and Page Down move it; Home and End go to its left and right end. A click chooses a box, a double click enters it.
/// Ctrl and an arrow choose the next box in that direction, Return enters it. The receiver of the signal decides what
/// entering does.
class DiagramView : public QGraphicsView
{
    Q_OBJECT

public:
    DiagramView();

    /// Shows a diagram and chooses its first box. Shows the whole picture, or if that would be too small to read, its
    /// own size at the first box. Shows nothing if the diagram is empty.
    void showDiagram(std::shared_ptr<const Diagram> shown);

    /// Returns the diagram; null if none is shown.
    const Diagram* queryDiagram() const { return diagram.get(); }

    /// Enlarges the picture by a number of steps, within limits; a negative number makes it smaller. The centre of the
    /// view stays.
    void zoom(double steps);

    /// Show the whole picture, at most at its own size, or the picture at its own size.
    void showAll();
    void showOwnSize();

Q_SIGNALS:
    /// Emitted when the user chooses a box, or enters it.
    void boxChosen(std::size_t box);
    void boxEntered(std::size_t box);

protected:
    /// Draws the diagram, as the background of a scene without items: it has few boxes and arrows, so those in view are
    /// found one by one.
    void drawBackground(QPainter* painter, const QRectF& exposed) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Zooms about the current anchor, and ends fitting.
    void zoomAtAnchor(double steps);
    void fit();
    void choose(std::size_t box);
    // Return the box at a point of the view, and the one nearest to the chosen box in the direction of an arrow key.
    std::optional<std::size_t> boxAt(const QPoint& point) const;
    std::optional<std::size_t> boxTowards(int key) const;

    std::shared_ptr<const Diagram> diagram; // null if there is no picture
    std::size_t chosen = 0;                 // box
    QPoint pressed;                         // where a button of the mouse went down; far away after a double click
    bool opens = true;                      // true until the user changes the scale
    bool fits = true;                       // keep the whole picture visible when the window is resized
};
