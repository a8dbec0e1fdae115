#pragma once

#include <QGraphicsScene>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

class Diagram;

/// The items of a diagram, with a chosen box. One item for each box and arrow, so that Qt only draws those in view. The
/// scene owns the items and shares the diagram, which the items refer to.
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

private:
    std::shared_ptr<const Diagram> diagram;
    std::vector<QGraphicsItem*> boxes; // by number; the scene owns them
    std::size_t chosen = 0;
};
