#pragma once

#include <QGraphicsView>

#include <cstddef>
#include <memory>

class Diagram;
class DiagramScene;

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
    void showDiagram(std::shared_ptr<const Diagram> diagram);

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

    DiagramScene* diagramScene = nullptr; // null if there is no picture
    QPoint pressed;                       // where a button of the mouse went down; far away after a double click
    bool opens = true;                    // true until the user changes the scale
    bool fits = true;                     // keep the whole picture visible when the window is resized
};
