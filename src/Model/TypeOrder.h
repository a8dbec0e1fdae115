#pragma once

#include "Base/Progress.h"
#include "Model/ClimbShortcuts.h"
#include "Model/LinkGraph.h"
#include "Model/TypeList.h"

#include <memory>

/// Places the elements of a model in its list: the ancestors of an element before it, then the element, then its
/// descendants; each once.
///
/// A climb leads from an element to its first parent that isn't placed, and so on up; the descent to a child starts a
/// new one. Where parents form a cycle, a parent from which the climb in hand has already come is passed over.
class TypeOrder
{
public:
    /// `elements` by their numbers. Their links must not change as long as this lives.
    TypeOrder(TypeList& list, std::span<Element* const> elements);

    /// Places an element and all that it leads to; nothing when it is placed. Tells the progress, so Cancelled may be
    /// raised.
    void place(const Element& element);

private:
    using Index = LinkGraph::Index;
    static constexpr Index kNone = 0xFFFFFFFF, kPlaced = kNone;

    // What a climb looks at, and no more, so that much of it stays in the processor's memory.
    struct Node
    {
        Index climb = 0;  // the last that came by, or kPlaced
        Index parent = 0; // the first that may not be placed yet; the element itself where none is known
    };

    // How many parents and children of an element are known to be placed: the first so many, which are never looked at
    // again, since there may be very many.
    struct Progress
    {
        Index parents = 0;
        Index children = 0;
    };

    // An element in hand. When it is placed its climb becomes kPlaced here too.
    struct Frame
    {
        Index element;
        Index climb;
    };

    void enter(Index element, Index climb);
    void meet(Index element);
    bool isOld(const Frame& frame) const { return nodes[frame.element].climb != frame.climb; }
    void markPlaced(Frame& frame);
    Index nextParentOf(const Frame& frame);
    Index nextParentInClimb(const Frame& frame);
    Index findParent(const Frame& frame);
    Index nextChildOf(Index element);
    bool placeLeaf(Index leaf);
    void useShortcuts();

    TypeList& list;
    LinkGraph graph;
    std::vector<Node> nodes;
    std::vector<Progress> progress;
    std::vector<Frame> frames; // a stack
    ProgressMeter told;
    Index lastClimb = 0;
    std::size_t stepsLeft;
    std::unique_ptr<ClimbShortcuts> shortcuts; // once there have been many steps
};
