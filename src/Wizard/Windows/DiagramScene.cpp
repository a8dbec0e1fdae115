#include "Wizard/Windows/DiagramScene.h"

#include "Wizard/Windows/Diagram.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>
#include <utility>

namespace {

// Returns the area of a box with room for the broad frame of a chosen one.
QRectF frameOf(const Diagram& diagram, std::size_t box)
{
    return diagram.areaOf(box).adjusted(-4, -4, 4, 4);
}

} // namespace

DiagramScene::DiagramScene(std::shared_ptr<const Diagram> drawn, const QColor& ground) : diagram(std::move(drawn))
{
    setBackgroundBrush(ground);
    setSceneRect(diagram->queryArea());
}

// Arrows come first, so that boxes lie over them. Only those in view are drawn.
void DiagramScene::drawBackground(QPainter* painter, const QRectF& exposed)
{
    QGraphicsScene::drawBackground(painter, exposed);
    for (std::size_t arrow = 0; arrow < diagram->arrowCount(); ++arrow)
        if (diagram->areaOfArrow(arrow).intersects(exposed))
            diagram->drawArrow(*painter, arrow);
    const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    for (std::size_t box = 0; box < diagram->boxCount(); ++box)
        if (frameOf(*diagram, box).intersects(exposed))
            diagram->drawBox(*painter, box, exposed, scale, box == chosen);
}

// Both boxes are drawn again, for the frame.
void DiagramScene::choose(std::size_t box)
{
    update(frameOf(*diagram, std::exchange(chosen, box)));
    update(frameOf(*diagram, chosen));
}

// A picture has few boxes, so they are searched one by one.
std::optional<std::size_t> DiagramScene::boxAt(const QPointF& point) const
{
    for (std::size_t box = 0; box < diagram->boxCount(); ++box)
        if (diagram->areaOf(box).contains(point))
            return box;
    return {};
}

// The distance across the key's direction counts twice, so that a key prefers boxes of the same row or column.
std::optional<std::size_t> DiagramScene::boxTowards(int key) const
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
