#include "Wizard/Windows/DiagramView.h"

#include "Wizard/Windows/Diagram.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyleOptionGraphicsItem>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

// A view is in one of three states. A new picture is fitted to the window, or shown at its own size if its texts would
// be illegible. This is repeated when the window's size changes, because the window gets its size only after
// showDiagram(). After "show all", the whole picture stays visible at each size of the window. After a zoom, the user's
// scale stays.
namespace {
// Scales of the picture: one step of the wheel or a key, the limits of zooming, and the scale below which a picture
// opens at its own size instead of whole, because its texts would be hard to read.
constexpr double kStep = 1.25;
constexpr double kSmallest = 0.02;
constexpr double kLargest = 8;
constexpr double kSmallestWhole = 0.45;
// Pixels left free above and beside the first box.
constexpr double kMargin = 20;

// Returns the area of a box with room for the broad frame of a chosen one.
QRectF frameOf(const Diagram& diagram, std::size_t box)
{
    return diagram.areaOf(box).adjusted(-4, -4, 4, 4);
}
} // namespace

DiagramView::DiagramView()
{
    setDragMode(ScrollHandDrag);
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
}

void DiagramView::showDiagram(std::shared_ptr<const Diagram> shown)
{
    delete scene();
    diagram.reset();
    chosen = 0;
    if (shown->isEmpty())
        return;
    diagram = std::move(shown);
    setScene(new QGraphicsScene(diagram->queryArea(), this));
    setBackgroundBrush(palette().color(QPalette::Base));
    opens = fits = true;
    fit();
}

// Arrows come first, so that boxes lie over them.
void DiagramView::drawBackground(QPainter* painter, const QRectF& exposed)
{
    QGraphicsView::drawBackground(painter, exposed);
    for (std::size_t arrow = 0; arrow < diagram->arrowCount(); ++arrow)
        if (diagram->areaOfArrow(arrow).intersects(exposed))
            diagram->drawArrow(*painter, arrow);
    const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    for (std::size_t box = 0; box < diagram->boxCount(); ++box)
        if (frameOf(*diagram, box).intersects(exposed))
            diagram->drawBox(*painter, box, exposed, scale, box == chosen);
}

// Both boxes are drawn again, for the frame.
void DiagramView::choose(std::size_t box)
{
    scene()->update(frameOf(*diagram, std::exchange(chosen, box)));
    scene()->update(frameOf(*diagram, chosen));
    Q_EMIT boxChosen(box);
}

std::optional<std::size_t> DiagramView::boxAt(const QPoint& point) const
{
    for (std::size_t box = 0; diagram && box < diagram->boxCount(); ++box)
        if (diagram->areaOf(box).contains(mapToScene(point)))
            return box;
    return {};
}

// The distance across the key's direction counts twice, so that a key prefers boxes of the same row or column.
std::optional<std::size_t> DiagramView::boxTowards(int key) const
{
    std::optional<std::size_t> nearest;
    double shortest = 0;
    for (std::size_t box = 0; box < diagram->boxCount(); ++box) {
        const QPointF offset = diagram->areaOf(box).center() - diagram->areaOf(chosen).center();
        const bool isSideways = key == Qt::Key_Left || key == Qt::Key_Right;
        const bool isBackwards = key == Qt::Key_Left || key == Qt::Key_Up;
        const double along = (isSideways ? offset.x() : offset.y()) * (isBackwards ? -1 : 1);
        const double distance = along + 2 * std::abs(isSideways ? offset.y() : offset.x());
        if (box == chosen || along <= 0 || (nearest && distance >= shortest))
            continue;
        nearest = box;
        shortest = distance;
    }
    return nearest;
}

void DiagramView::zoom(double steps)
{
    setTransformationAnchor(AnchorViewCenter);
    zoomAtAnchor(steps);
}

void DiagramView::zoomAtAnchor(double steps)
{
    opens = fits = false;
    const double now = transform().m11();
    // The factor that keeps the scale within its limits.
    const double factor = std::clamp(now * std::pow(kStep, steps), kSmallest, kLargest) / now;
    scale(factor, factor);
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

// A notch of a wheel is 120 units; a touch pad reports parts of it.
void DiagramView::wheelEvent(QWheelEvent* event)
{
    setTransformationAnchor(AnchorUnderMouse);
    zoomAtAnchor(event->angleDelta().y() / 120.0);
    event->accept();
}

void DiagramView::keyPressEvent(QKeyEvent* event)
{
    const bool isArrow = event->key() >= Qt::Key_Left && event->key() <= Qt::Key_Down;
    if (diagram && isArrow && (event->modifiers() & Qt::ControlModifier)) {
        if (const auto box = boxTowards(event->key())) {
            choose(*box);
            ensureVisible(diagram->areaOf(*box));
        }
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (diagram)
            Q_EMIT boxEntered(chosen);
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoom(1);
    case Qt::Key_Minus:
        return zoom(-1);
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

// A press and release without dragging is a click.
void DiagramView::mousePressEvent(QMouseEvent* event)
{
    pressed = event->pos();
    QGraphicsView::mousePressEvent(event);
}

void DiagramView::mouseReleaseEvent(QMouseEvent* event)
{
    QGraphicsView::mouseReleaseEvent(event);
    const bool isClick = (event->pos() - pressed).manhattanLength() < QApplication::startDragDistance();
    if (!isClick || event->button() != Qt::LeftButton)
        return;
    if (const auto box = boxAt(event->pos()))
        choose(*box);
}

void DiagramView::mouseDoubleClickEvent(QMouseEvent* event)
{
    pressed = {-QApplication::startDragDistance(), 0}; // so that its release is not a click
    if (event->button() != Qt::LeftButton)
        return;
    if (const auto box = boxAt(event->pos()))
        Q_EMIT boxEntered(*box);
}

void DiagramView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    fit();
}

// Fits the picture into the window again, unless the user has zoomed. A new picture that is too large to be legible
// starts at its first box.
void DiagramView::fit()
{
    if (!diagram)
        return;
    const bool first = opens;
    if (fits)
        showAll();
    // showAll() ends the opening, which a change of the window's size must not.
    opens = first;
    if (opens && transform().m11() < kSmallestWhole) {
        resetTransform();
        // Centres the first box, or shows the upper left corner of one that is larger than the view.
        const QRectF& start = diagram->areaOf(0);
        const QSizeF seen = viewport()->size();
        centerOn(std::min(start.center().x(), start.left() + seen.width() / 2 - kMargin),
                 std::min(start.center().y(), start.top() - kMargin + seen.height() / 2));
    }
}
