#pragma once

#include "Base/Progress.h"

#include <algorithm>
#include <cstdint>
#include <vector>

/// The strongly connected components of a graph, and an order in which a node comes behind those that it leads to, but
/// for what leads back to itself (R. Tarjan, Depth-first search and linear graph algorithms, 1972). Walks without
/// recursion, in time linear in the links.
///
/// `Graph` answers degree(node), and target(node, i), the node that the i-th link leads to or kNone where it leads to
/// none.
template <class Graph>
class StrongComponents
{
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;

    StrongComponents(const Graph& graph, std::size_t nodeCount) :
        graph(graph), component(nodeCount, kNone), number(nodeCount), lowest(nodeCount)
    {}

    /// Adds `start` and all nodes that it reaches, as far as they aren't there yet. Cancelled may be raised.
    void visit(Index start)
    {
        if (number[start] != 0)
            return;
        enter(start);
        while (!steps.empty()) {
            cancelPoint.pass();
            Step& top = steps.back();
            if (top.nextLink == graph.degree(top.node)) {
                leave(top.node);
                continue;
            }
            const Index target = graph.target(top.node, top.nextLink++);
            if (target == kNone)
                continue;
            if (number[target] == 0)
                enter(target);
            else if (component[target] == kNone)
                lowest[top.node] = std::min(lowest[top.node], number[target]);
        }
    }

    /// The nodes visited so far, in order.
    const std::vector<Index>& query() const { return order; }

    /// The same number for two nodes that reach each other, kNone for one that wasn't visited.
    Index componentOf(Index node) const { return component[node]; }
    Index componentCount() const { return components; }

private:
    struct Step
    {
        Index node;
        Index nextLink;
    };

    void enter(Index node)
    {
        number[node] = lowest[node] = ++lastNumber;
        pending.push_back(node);
        steps.push_back({node, 0});
    }

    void leave(Index node)
    {
        order.push_back(node);
        steps.pop_back();
        if (!steps.empty())
            lowest[steps.back().node] = std::min(lowest[steps.back().node], lowest[node]);
        if (lowest[node] != number[node])
            return;
        Index member;
        do {
            member = pending.back();
            pending.pop_back();
            component[member] = components;
        } while (member != node);
        ++components;
    }

    Graph graph;
    std::vector<Index> order;
    std::vector<Index> component;
    std::vector<Index> number;  // in the order of the first visit, from 1; 0: not visited
    std::vector<Index> lowest;  // the lowest number that is reached and has no component yet
    std::vector<Index> pending; // visited, without a component yet
    std::vector<Step> steps;
    CancelPoint cancelPoint{1 << 16};
    Index lastNumber = 0;
    Index components = 0;
};
