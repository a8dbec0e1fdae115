#include "DiagramView.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {
constexpr double kStep = 1.25;
constexpr double kSmallest = 0.02;
constexpr double kLargest = 8;
} // namespace

DiagramView::DiagramView(QGraphicsScene* scene) : QGraphicsView(scene)
{
    setDragMode(ScrollHandDrag);
    setRenderHint(QPainter::Antialiasing);
    setTransformationAnchor(AnchorUnderMouse);
    setFrameShape(QFrame::NoFrame);
}

void DiagramView::zoom(double factor)
{
    fits = false;
    const double now = transform().m11();
    const double wanted = std::clamp(now * factor, kSmallest, kLargest) / now;
    scale(wanted, wanted);
}

void DiagramView::showAll()
{
    fits = true;
    fitInView(sceneRect(), Qt::KeepAspectRatio);
    if (transform().m11() > 1)
        resetTransform();
}

void DiagramView::showOwnSize()
{
    fits = false;
    resetTransform();
}

void DiagramView::wheelEvent(QWheelEvent* event)
{
    zoom(std::pow(kStep, event->angleDelta().y() / 120.0));
    event->accept();
}

void DiagramView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoom(kStep);
    case Qt::Key_Minus:
        return zoom(1 / kStep);
    case Qt::Key_0:
        return showAll();
    case Qt::Key_1:
        return showOwnSize();
    case Qt::Key_PageUp:
        return verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub);
    case Qt::Key_PageDown:
        return verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    case Qt::Key_Home:
        return horizontalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    case Qt::Key_End:
        return horizontalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    default:
        QGraphicsView::keyPressEvent(event); // the arrows move the picture
    }
}

void DiagramView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    if (fits)
        showAll();
}
