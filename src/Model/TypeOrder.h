#pragma once

#include "Base/LargePages.h"
#include "Base/Progress.h"
#include "Model/ClimbShortcuts.h"
#include "Model/LinkGraph.h"
#include "Model/TypeList.h"

#include <memory>

/// Places the elements of a model in its list, each once: first an element's ancestors, then the element, then its
/// descendants. Since the list grows at its head, components come before the types that use them.
///
/// A climb leads from an element to its first unplaced parent, and so on up. Each descent to a child starts a new
/// climb. In a cycle, a parent from which the current climb came is skipped. No recursion, so deep sources can't
/// overflow the stack.
class TypeOrder
{
public:
    /// `elements` are all elements of the model by number. Their links must not change while this lives.
    TypeOrder(TypeList& list, std::span<Element* const> elements);

    /// Places an element and everything linked to it. Does nothing if it is placed. Reports progress, so it throws
    /// Cancelled.
    void place(const Element& element);

private:
    using Index = LinkGraph::Index;
    static constexpr Index kNone = 0xFFFFFFFF, kPlaced = kNone;

    // The data that climbs read, kept small so that many nodes fit into the processor's cache. Climbs are numbered from
    // 1, and kPlaced is larger than any of them. So one comparison tells whether an element is neither placed nor
    // reached by the current climb.
    struct Node
    {
        Index climb = 0;  // the last climb that reached it, or kPlaced
        Index parent = 0; // the first parent that may be unplaced; itself if none is known
    };

    // The number of leading parents and children that are placed. They are never visited again, because an element can
    // have very many.
    struct Progress
    {
        Index parents = 0;
        Index children = 0;
    };

    // An element being placed: first its ancestors are visited, and once it is placed, its descendants. Its climb then
    // becomes kPlaced here, too.
    struct Frame
    {
        Index element;
        Index climb;
    };

    void enter(Index element, Index climb);
    void readLinks(Index element);
    bool isStale(const Frame& frame) const { return nodes[frame.element].climb != frame.climb; }
    void markPlaced(Frame& frame);
    Index nextParentOf(const Frame& frame);
    Index nextParentInClimb(const Frame& frame);
    Index findParent(const Frame& frame);
    Index nextChildOf(Index element);
    bool placeLeaf(Index leaf);
    void useShortcuts();

    TypeList& list;
    LinkGraph graph;
    std::vector<Node, LargePages<Node>> nodes;
    std::vector<Progress, LargePages<Progress>> progress;
    std::vector<Frame> frames; // a stack
    ProgressMeter meter;
    Index lastClimb = 0;
    // The budget of the current phase: all steps at first, then those in cycles.
    std::size_t stepsLeft;
    std::unique_ptr<ClimbShortcuts> shortcuts; // null until many steps were made
};
