#pragma once

#include <QGraphicsScene>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

class Diagram;

/// A diagram to look at, one of whose boxes is chosen.
class DiagramScene : public QGraphicsScene
{
public:
    explicit DiagramScene(std::shared_ptr<const Diagram> diagram, const QColor& ground);

    const Diagram& queryDiagram() const { return *diagram; }

    /// The chosen box; the first one at the start.
    std::size_t queryChosen() const { return chosen; }
    void choose(std::size_t box);

    /// The box at that point.
    std::optional<std::size_t> boxAt(const QPointF& point) const;

    /// The box nearest to the chosen one in the direction of an arrow key.
    std::optional<std::size_t> boxTowards(int key) const;

private:
    std::shared_ptr<const Diagram> diagram;
    std::vector<QGraphicsItem*> boxes;
    std::size_t chosen = 0;
};
