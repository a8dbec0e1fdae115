#pragma once

#include <QGraphicsScene>

#include <cstddef>
#include <memory>
#include <optional>

class Diagram;

/// A diagram with a chosen box, drawn as the background of a scene without items: a picture has few boxes and arrows,
/// so those in view are found one by one.
class DiagramScene : public QGraphicsScene
{
public:
    /// The diagram must not be empty; `ground` is the colour between the boxes.
    explicit DiagramScene(std::shared_ptr<const Diagram> diagram, const QColor& ground);

    /// Returns the diagram, which lives at least as long as the scene.
    const Diagram& queryDiagram() const { return *diagram; }

    /// Returns the chosen box; at first box 0.
    std::size_t queryChosen() const { return chosen; }
    /// Marks another box as the chosen one.
    void choose(std::size_t box);

    /// Returns the box at a point, if any.
    std::optional<std::size_t> boxAt(const QPointF& point) const;

    /// Returns the box nearest to the chosen one in the direction of an arrow key, if any.
    std::optional<std::size_t> boxTowards(int key) const;

protected:
    void drawBackground(QPainter* painter, const QRectF& exposed) override;

private:
    std::shared_ptr<const Diagram> diagram;
    std::size_t chosen = 0;
};
