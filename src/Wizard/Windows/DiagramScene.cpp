#include "Wizard/Windows/DiagramScene.h"

#include "Wizard/Windows/Diagram.h"

#include <QGraphicsItem>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>
#include <utility>

namespace {

class BoxItem : public QGraphicsItem
{
public:
    BoxItem(const DiagramScene& shownIn, std::size_t boxNumber) : scene(shownIn), box(boxNumber)
    {
        setFlag(ItemUsesExtendedStyleOption); // without it, a part of a box would draw all of it
        setZValue(1);                         // above the arrows
    }

    // With room for the broad frame of a chosen box.
    QRectF boundingRect() const override { return scene.queryDiagram().areaOf(box).adjusted(-4, -4, 4, 4); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) override
    {
        const double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
        scene.queryDiagram().drawBox(*painter, box, option->exposedRect, scale, scene.queryChosen() == box);
    }

private:
    const DiagramScene& scene;
    std::size_t box;
};

// The items are owned by the scene, which also keeps their diagram alive.
class ArrowItem : public QGraphicsItem
{
public:
    ArrowItem(const Diagram& drawn, std::size_t arrowNumber) : diagram(drawn), arrow(arrowNumber) {}

    QRectF boundingRect() const override { return diagram.areaOfArrow(arrow); }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override
    {
        diagram.drawArrow(*painter, arrow);
    }

private:
    const Diagram& diagram;
    std::size_t arrow;
};

} // namespace

DiagramScene::DiagramScene(std::shared_ptr<const Diagram> drawn, const QColor& ground) : diagram(std::move(drawn))
{
    setBackgroundBrush(ground);
    for (std::size_t arrow = 0; arrow < diagram->arrowCount(); ++arrow)
        addItem(new ArrowItem(*diagram, arrow));
    for (std::size_t box = 0; box < diagram->boxCount(); ++box)
        addItem(boxes.emplace_back(new BoxItem(*this, box)));
    setSceneRect(diagram->queryArea());
}

// Both boxes are drawn again, for the frame.
void DiagramScene::choose(std::size_t box)
{
    boxes[chosen]->update();
    chosen = box;
    boxes[chosen]->update();
}

// A picture has few boxes, so they are searched one by one.
std::optional<std::size_t> DiagramScene::boxAt(const QPointF& point) const
{
    for (std::size_t box = 0; box < boxes.size(); ++box)
        if (diagram->areaOf(box).contains(point))
            return box;
    return {};
}

// The distance across the key's direction counts twice, so that a key prefers boxes of the same row or column.
std::optional<std::size_t> DiagramScene::boxTowards(int key) const
{
    std::optional<std::size_t> nearest;
    double shortest = 0;
    for (std::size_t box = 0; box < boxes.size(); ++box) {
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
