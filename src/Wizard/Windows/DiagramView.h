#pragma once

#include <QGraphicsView>

#include <cstddef>
#include <memory>

class Diagram;
class DiagramScene;

/// A picture to move about in: the wheel and + and - zoom, 0 shows all of it and 1 its own size, dragging, arrows, Page
/// Up and Page Down move it, Home and End go to its left and right end. A click chooses a box, a double click enters
/// it; with the keyboard Ctrl and an arrow chooses the next box that way, and Return enters it.
class DiagramView : public QGraphicsView
{
    Q_OBJECT

public:
    DiagramView();

    /// Shows a diagram whose first box is chosen: the whole picture; where that is too small to read, its own size with
    /// that box in view.
    void showDiagram(std::shared_ptr<const Diagram> diagram);

    void zoom(double factor);

    /// Shows the whole picture, not enlarged.
    void showAll();

    void showOwnSize();

Q_SIGNALS:
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
    void scaleBy(double factor);
    void fit();
    void choose(std::size_t box);

    DiagramScene* diagramScene = nullptr; // null until there is a picture
    QPoint pressed;
    bool opens = true; // nobody has zoomed yet
    bool fits = true;  // the whole picture is to be seen, in any size of the window
};
