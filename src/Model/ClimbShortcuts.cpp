#include "Model/ClimbShortcuts.h"

#include "Base/Progress.h"
#include "Base/StrongComponents.h"

#include <algorithm>
#include <bit>
#include <random>

namespace {

constexpr unsigned kElementsPerPoll = 4096;

// The graph of parents, for StrongComponents.
struct ParentLinks
{
    const LinkGraph& graph;

    std::size_t degree(LinkGraph::Index element) const { return graph.parents(element).size(); }
    LinkGraph::Index target(LinkGraph::Index element, std::size_t i) const { return graph.parents(element)[i]; }
};

} // namespace

ClimbShortcuts::ClimbShortcuts(LinkGraph& graph) : graph(graph)
{
    CancelPoint cancelPoint(kElementsPerPoll);
    for (Index element = 0; element < graph.size(); ++element) { // read() can add elements
        cancelPoint.pass();
        graph.read(element);
    }
    placed.resize(graph.size());
    parentsDone.resize(graph.size());
    for (Index element = 0; element < graph.size(); ++element)
        placed[element] = graph[element]->isPlaced();
    findCycles();
    assignHeights();
}

// An element is in a cycle if its strongly connected component has several members. One that is its own parent is not:
// that link never leads to an unplaced ancestor.
void ClimbShortcuts::findCycles()
{
    StrongComponents components(ParentLinks{graph}, graph.size());
    for (Index element = 0; element < graph.size(); ++element)
        components.visit(element);
    std::vector<Index> members(components.componentCount());
    component.reserve(graph.size());
    for (Index element = 0; element < graph.size(); ++element) {
        component.push_back(components.componentOf(element));
        ++members[component.back()];
    }
    isInCycle.reserve(graph.size());
    for (Index element = 0; element < graph.size(); ++element)
        isInCycle.push_back(members[component[element]] > 1);
}

// Half of the elements have height 0, a quarter 1, and so on. Heights are random, so no source can be built for the
// worst case.
void ClimbShortcuts::assignHeights()
{
    std::mt19937 random(std::random_device{}());
    towers.reserve(graph.size() + 1);
    towers.push_back(0);
    for (Index element = 0; element < graph.size(); ++element)
        towers.push_back(towers.back() + 1 + static_cast<Index>(std::countr_zero(random() | 1U << 31)));
    shortcuts.assign(towers.back(), kNone);
}

// A shortcut may end at an element of a cycle that is lower than its level, because climbs stopped there. Passing it at
// that level would use shortcuts that the element doesn't have, so all are found again.
void ClimbShortcuts::passCycles()
{
    passesCycles = true;
    std::ranges::fill(shortcuts, kNone);
}

// As in a skip list: goes as far as possible on the highest level, then continues one level lower.
ClimbShortcuts::Index ClimbShortcuts::topOf(Index element)
{
    for (Index level = height(element); isPassed(element);) {
        if (const Index above = next(element, level); above != kNone) {
            element = above;
            level = height(element);
        } else if (level-- == 0) {
            break;
        }
    }
    return element;
}

// Returns the next element on the way up from a passed element that is at least `level` high or is not passed; kNone if
// there is none.
ClimbShortcuts::Index ClimbShortcuts::next(Index element, Index level)
{
    Index& kept = shortcuts[towers[element] + level];
    if (kept != kNone && !placed[kept])
        return kept;
    // The recursion is at most as deep as there are levels, 32.
    if (level == 0)
        return kept = firstParent(element);
    Index above = next(element, level - 1);
    while (above != kNone && isPassed(above) && height(above) < level)
        above = next(above, level - 1);
    return kept = above;
}

// Returns the first parent outside of the element's cycle that isn't placed, kNone if all are.
ClimbShortcuts::Index ClimbShortcuts::firstParent(Index element)
{
    const auto parents = graph.parents(element);
    for (Index& done = parentsDone[element]; done < parents.size(); ++done)
        if (!placed[parents[done]] && component[parents[done]] != component[element])
            return parents[done];
    return kNone;
}
