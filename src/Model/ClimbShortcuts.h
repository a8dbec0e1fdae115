#pragma once

#include "Model/LinkGraph.h"

/// Where climbs end that many others went before. Outside of cycles an element is placed behind all its parents only,
/// so the way up from it, to its first parent that isn't placed and so on, stays the same until the last element on it
/// is placed. Elements of random height keep the next one on the way that is as high as they are, for each height, as
/// in a skip list (W. Pugh, Skip lists, 1990): the end of a way is found in steps of the logarithm of its length.
class ClimbShortcuts
{
public:
    using Index = LinkGraph::Index;

    /// Reads all of the graph.
    explicit ClimbShortcuts(LinkGraph& graph);

    void setPlaced(Index element) { placed[element] = true; }

    /// False for an element of a cycle of several: inside it a way depends on where it came from.
    bool isPassed(Index element) const { return passesCycles || !isInCycle[element]; }

    /// From now on elements of cycles are passed like others: parents in the same cycle don't count as such.
    void passCycles() { passesCycles = true; }

    /// The end of the way up from an element that isn't placed: the first that has no parent left to place, or that
    /// isn't passed.
    Index topOf(Index element);

private:
    static constexpr Index kNone = 0xFFFFFFFF;

    void findCycles();
    void giveHeights();
    Index height(Index element) const { return towers[element + 1] - towers[element] - 1; }
    Index next(Index element, Index level);
    Index firstParent(Index element);

    const LinkGraph& graph;
    std::vector<Index> component;
    std::vector<bool> isInCycle;
    std::vector<bool> placed;
    std::vector<Index> parentsDone; // of each element: parents that are placed, or of the same component
    std::vector<Index> towers;      // where each element's shortcuts start
    std::vector<Index> shortcuts;   // by level, the lowest leads to the next parent; kNone: not known
    bool passesCycles = false;
};
