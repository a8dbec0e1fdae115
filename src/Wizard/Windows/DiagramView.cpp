#include "Wizard/Windows/DiagramView.h"

#include "Wizard/Windows/Diagram.h"
#include "Wizard/Windows/DiagramScene.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
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
} // namespace

DiagramView::DiagramView()
{
    setDragMode(ScrollHandDrag);
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
}

void DiagramView::showDiagram(std::shared_ptr<const Diagram> diagram)
{
    delete diagramScene;
    diagramScene = nullptr;
    if (diagram->isEmpty())
        return;
    diagramScene = new DiagramScene(std::move(diagram), palette().color(QPalette::Base));
    diagramScene->setParent(this);
    setScene(diagramScene);
    opens = fits = true;
    fit();
}

void DiagramView::choose(std::size_t box)
{
    diagramScene->choose(box);
    Q_EMIT boxChosen(box);
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
    if (diagramScene && isArrow && (event->modifiers() & Qt::ControlModifier)) {
        if (const auto box = diagramScene->boxTowards(event->key())) {
            choose(*box);
            ensureVisible(diagramScene->queryDiagram().areaOf(*box));
        }
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (diagramScene)
            Q_EMIT boxEntered(diagramScene->queryChosen());
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
    if (!diagramScene || !isClick || event->button() != Qt::LeftButton)
        return;
    if (const auto box = diagramScene->boxAt(mapToScene(event->pos())))
        choose(*box);
}

void DiagramView::mouseDoubleClickEvent(QMouseEvent* event)
{
    pressed = {-QApplication::startDragDistance(), 0}; // so that its release is not a click
    if (!diagramScene || event->button() != Qt::LeftButton)
        return;
    if (const auto box = diagramScene->boxAt(mapToScene(event->pos())))
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
    if (!diagramScene)
        return;
    const bool first = opens;
    if (fits)
        showAll();
    // showAll() ends the opening, which a change of the window's size must not.
    opens = first;
    if (opens && transform().m11() < kSmallestWhole) {
        resetTransform();
        // Centres the first box, or shows the upper left corner of one that is larger than the view.
        const QRectF& start = diagramScene->queryDiagram().areaOf(0);
        const QSizeF seen = viewport()->size();
        centerOn(std::min(start.center().x(), start.left() + seen.width() / 2 - kMargin),
                 std::min(start.center().y(), start.top() - kMargin + seen.height() / 2));
    }
}
