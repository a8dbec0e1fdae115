#pragma once

#include "Model/LinkGraph.h"

/// A skip list over parent chains: finds the topmost unplaced ancestor in O(log n) steps. Outside of cycles, an element
/// is placed after all its parents. The way up from it, to its first unplaced parent and so on, therefore stays the
/// same until the last element on it is placed. Elements have random heights, as in a skip list (W. Pugh, Skip lists,
/// 1990), and keep for each level the next element on the way that is at least as high. A shortcut is found when it is
/// first needed, and again once its target has been placed.
class ClimbShortcuts
{
public:
    using Index = LinkGraph::Index;

    /// Reads the whole graph, which must outlive this object and keep its links. Throws Cancelled.
    explicit ClimbShortcuts(LinkGraph& graph);

    /// Records that an element has been placed.
    void setPlaced(Index element) { placed[element] = true; }

    /// Returns whether climbs pass this element by shortcuts. False in a cycle of several elements, because there the
    /// way depends on where the climb came from; see passCycles().
    bool isPassed(Index element) const { return passesCycles || !isInCycle[element]; }

    /// Makes climbs pass elements of cycles too, from now on. Parents in the same cycle are then ignored.
    void passCycles();

    /// Returns the end of the way up from an unplaced element: the first element without an unplaced parent, or that
    /// isn't passed.
    Index topOf(Index element);

private:
    static constexpr Index kNone = 0xFFFFFFFF;

    void findCycles();
    void assignHeights();
    Index height(Index element) const { return towers[element + 1] - towers[element] - 1; }
    Index next(Index element, Index level);
    Index firstParent(Index element);

    const LinkGraph& graph;
    std::vector<Index> component;
    std::vector<bool> isInCycle;
    std::vector<bool> placed;
    std::vector<Index> parentsDone; // per element, its leading parents that are placed or in its cycle
    std::vector<Index> towers;      // the offset of each element's shortcuts
    std::vector<Index> shortcuts;   // by level; level 0 is the next parent; kNone if unknown
    bool passesCycles = false;
};
