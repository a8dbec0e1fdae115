#include "Wizard/Windows/DiagramView.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {
constexpr double kStep = 1.25;
constexpr double kSmallest = 0.02;
constexpr double kLargest = 8;
constexpr double kLegible = 0.45;
constexpr double kMargin = 20;
} // namespace

DiagramView::DiagramView(QGraphicsScene* scene, const QRectF& startArea) : QGraphicsView(scene), start(startArea)
{
    setDragMode(ScrollHandDrag);
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
}

void DiagramView::zoom(double factor)
{
    setTransformationAnchor(AnchorViewCenter);
    scaleBy(factor);
}

void DiagramView::scaleBy(double factor)
{
    opens = fits = false;
    const double now = transform().m11();
    const double wanted = std::clamp(now * factor, kSmallest, kLargest) / now;
    scale(wanted, wanted);
}

void DiagramView::showAll()
{
    opens = false;
    fits = true;
    fitInView(sceneRect(), Qt::KeepAspectRatio);
    if (transform().m11() > 1)
        resetTransform();
}

void DiagramView::showOwnSize()
{
    opens = fits = false;
    resetTransform();
}

void DiagramView::wheelEvent(QWheelEvent* event)
{
    setTransformationAnchor(AnchorUnderMouse);
    scaleBy(std::pow(kStep, event->angleDelta().y() / 120.0));
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
    const bool first = opens;
    if (fits)
        showAll();
    opens = first;
    if (opens && transform().m11() < kLegible) {
        resetTransform();
        const QSizeF seen = viewport()->size();
        centerOn(start.left() + seen.width() / 2 - kMargin,
                 std::min(start.center().y(), start.top() - kMargin + seen.height() / 2));
    }
}
