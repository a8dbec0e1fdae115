#pragma once

#include <QGraphicsView>

/// A picture to move about in: the wheel and + and - zoom, 0 shows all of it and 1 its own size, dragging, arrows, Page
/// Up and Page Down move it, Home and End go to its left and right end.
class DiagramView : public QGraphicsView
{
public:
    /// Opens with the whole picture; where that is too small to read, with its own size from `start` on.
    DiagramView(QGraphicsScene* scene, const QRectF& start);

    void zoom(double factor);

    /// Shows the whole picture, not larger than its own size.
    void showAll();

    void showOwnSize();

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void scaleBy(double factor);

    QRectF start;
    bool opens = true; // nobody has zoomed yet
    bool fits = true;  // the whole picture is to be seen, in any size of the window
};
