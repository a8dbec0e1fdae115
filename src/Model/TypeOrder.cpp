#include "Model/TypeOrder.h"

#include <algorithm>

// Most sources need few steps for each element, and are ordered by plain climbs. A source that exceeds a budget linear
// in its size gets ClimbShortcuts, which read the whole graph once and make each climb outside of cycles logarithmic.
// Inside of cycles climbs stay plain, because there the way depends on where a climb came from. When their budget is
// exceeded as well, shortcuts pass cycles, too: the elements of a cycle are then placed in the order in which they are
// reached, and all else keeps its order. docs/adr/budget-of-climbs.md has the figures.

namespace {

// The budget of steps in cycles. In a large web of cycles each climb passes nearly all waiting elements, which is
// quadratic. When the budget is used up, the elements of a cycle are placed as they are reached. It is far above the
// needs of real sources, because the order is part of the document and must not change for them.
constexpr std::size_t kStepsInCycles = 100'000'000;

// The cost of a step up, which is visited again on the way back and then looks at its children.
constexpr std::size_t kStepsPerFrame = 8;

constexpr unsigned kFramesPerReport = 4096; // frames between two progress reports

} // namespace

TypeOrder::TypeOrder(TypeList& list, std::span<Element* const> elements) :
    list(list), graph(elements), nodes(elements.size()), progress(elements.size()),
    meter(Work::arranging, elements.size(), kFramesPerReport), stepsLeft(kStepsPerFrame * (1000 + 4 * elements.size()))
{
    // Elements of an earlier ordering keep their places, because TypeModel::place() adds a single one later.
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i]->isPlaced() && list[i]->queryNumber() < graph.size())
            nodes[list[i]->queryNumber()].climb = kPlaced;
}

void TypeOrder::place(const Element& start)
{
    if (start.queryNumber() >= graph.size() || nodes[start.queryNumber()].climb == kPlaced)
        return;
    enter(start.queryNumber(), ++lastClimb);
    while (!frames.empty()) {
        meter.step(list.size());
        Frame& top = frames.back();
        if (isStale(top)) {
            frames.pop_back();
            continue;
        }
        if (top.climb != kPlaced) {
            if (const Index parent = nextParentOf(top); parent != kNone) {
                enter(parent, top.climb);
                continue;
            }
            markPlaced(top);
        }
        if (const Index child = nextChildOf(top.element); child != kNone)
            enter(child, ++lastClimb);
        else
            frames.pop_back();
    }
}

// Pushes an element. An element that waits in one climb can be entered again by a later one, which does all the work;
// its earlier frames are stale then. Stale frames are removed from time to time, to bound the stack.
void TypeOrder::enter(Index element, Index climb)
{
    if (frames.size() > 4 * nodes.size())
        std::erase_if(frames, [this](const Frame& frame) { return isStale(frame); });
    if (nodes[element].climb == 0)
        readLinks(element);
    nodes[element].climb = climb;
    frames.push_back({element, climb});
}

// Reads the links of an element at its first visit.
void TypeOrder::readLinks(Index element)
{
    graph.read(element);
    if (nodes.size() < graph.size()) {
        nodes.resize(graph.size());
        progress.resize(graph.size());
    }
    nodes[element].parent = element;
}

// add() checks whether a child's known type is listed. Most elements have no child with a known type, and skip that
// check.
void TypeOrder::markPlaced(Frame& frame)
{
    Element* element = graph[frame.element];
    nodes[frame.element].climb = frame.climb = kPlaced;
    element->setPlaced(true);
    if (graph.hasKnownChild(frame.element))
        list.add(element);
    else
        list.addFirst(element);
    if (shortcuts)
        shortcuts->setPlaced(frame.element);
}

// Returns the next parent to place, or an ancestor that comes before it; kNone if the element can be placed.
TypeOrder::Index TypeOrder::nextParentOf(const Frame& frame)
{
    if (!shortcuts || !shortcuts->isPassed(frame.element)) {
        if (stepsLeft >= kStepsPerFrame)
            return nextParentInClimb(frame);
        useShortcuts();
        return nextParentOf(frame);
    }
    const Index top = shortcuts->topOf(frame.element);
    return top == frame.element ? kNone : top;
}

// Returns the next parent that is neither placed nor on the current climb. No other parent has the number of a later
// climb: a climb places everything it reaches before an earlier one continues.
TypeOrder::Index TypeOrder::nextParentInClimb(const Frame& frame)
{
    stepsLeft -= kStepsPerFrame;
    const Index parent = nodes[frame.element].parent;
    return nodes[parent].climb < frame.climb ? parent : findParent(frame);
}

// Searches the parents for the next one to place. Placed parents at the start of the list are skipped for good, because
// an element can have very many. The first unplaced one is kept for the next climbs. Parents on the current climb are
// skipped each time, and count as steps.
TypeOrder::Index TypeOrder::findParent(const Frame& frame)
{
    const std::span<const Index> parents = graph.parents(frame.element);
    Index& placed = progress[frame.element].parents;
    while (placed < parents.size() && nodes[parents[placed]].climb == kPlaced)
        ++placed;
    nodes[frame.element].parent = placed < parents.size() ? parents[placed] : frame.element;
    std::size_t next = placed;
    while (next < parents.size() && nodes[parents[next]].climb >= frame.climb)
        ++next;
    stepsLeft -= std::min(stepsLeft, next - placed);
    return next < parents.size() ? parents[next] : kNone;
}

// Returns the next child to descend to; kNone if all are placed. Places leaves on the way.
TypeOrder::Index TypeOrder::nextChildOf(Index element)
{
    const std::span<const Index> children = graph.children(element);
    for (Index& placed = progress[element].children; placed < children.size(); ++placed)
        if (nodes[children[placed]].climb != kPlaced && !placeLeaf(children[placed]))
            return children[placed];
    return kNone;
}

// Most elements are fields of one record and can be placed once the record is. They cost a step, but are not pushed.
// The step is counted as if they were, so that the budget, and with it the order, stays the same.
bool TypeOrder::placeLeaf(Index leaf)
{
    Element* const element = graph[leaf];
    const ElementList& parents = element->queryParents();
    const bool areParentsPlaced = parents.size() == 0 || (parents.size() == 1 && parents[0]->isPlaced());
    if (shortcuts || stepsLeft < kStepsPerFrame || element->queryChildren().size() > 0 || !areParentsPlaced)
        return false;
    stepsLeft -= kStepsPerFrame;
    nodes[leaf].climb = kPlaced;
    element->setPlaced(true);
    list.addFirst(element);
    return true;
}

// Begins the next phase. Called when the budget of the current one is used up.
void TypeOrder::useShortcuts()
{
    if (shortcuts) {
        shortcuts->passCycles();
    } else {
        shortcuts = std::make_unique<ClimbShortcuts>(graph);
        nodes.resize(graph.size());
        progress.resize(graph.size());
        stepsLeft = kStepsInCycles;
    }
}
