#pragma once

#include "Base/Progress.h"

#include <algorithm>
#include <cstdint>
#include <vector>

/// Finds the strongly connected components of a graph (R. Tarjan, Depth-first search and linear graph algorithms,
/// 1972), and an order in which every node follows the nodes that it links to, except links that close a cycle. Walks
/// without recursion, in time linear in the links.
///
/// `Graph` has degree(node), the number of a node's links, and target(node, i), the node at the end of its i-th link,
/// or kNone if the link leads nowhere. The graph must not change between visits.
///
/// Components are numbered from 0. A component gets its number after all components that it reaches, so links between
/// components lead to lower numbers.
template <class Graph>
class StrongComponents
{
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;

    /// Nodes are numbered from 0 to `nodeCount` - 1. The graph is copied, unless `Graph` is a reference type.
    StrongComponents(const Graph& graph, std::size_t nodeCount) :
        graph(graph), component(nodeCount, kNone), number(nodeCount), lowest(nodeCount)
    {}

    /// Adds `start` and all nodes that it reaches and that were not visited before. Throws Cancelled. An exception
    /// leaves the object unusable.
    void visit(Index start)
    {
        if (number[start] != 0)
            return;
        enter(start);
        while (!steps.empty()) {
            // A source's graph can take seconds.
            cancelPoint.pass();
            Step& top = steps.back();
            if (top.nextLink == graph.degree(top.node)) {
                leave(top.node);
                continue;
            }
            // `top` is not used after enter(), which may move the stack.
            const Index target = graph.target(top.node, top.nextLink++);
            if (target == kNone)
                continue;
            if (number[target] == 0)
                enter(target);
            // A target that has a component belongs to one that is complete and can't reach back.
            else if (component[target] == kNone)
                lowest[top.node] = std::min(lowest[top.node], number[target]);
        }
    }

    /// Returns the nodes visited so far, in order. Targets come before the nodes that link to them, except inside a
    /// component.
    const std::vector<Index>& query() const { return order; }

    /// Returns the component of a node, kNone if it was not visited. Two nodes that reach each other have the same one.
    Index componentOf(Index node) const { return component[node]; }
    Index componentCount() const { return components; }

private:
    // A node on the path from the start, and the index of the link to follow next. This stack replaces recursion, whose
    // depth a source could choose.
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

    // All links of `node` have been followed. If it reaches no earlier node without a component, it and all nodes
    // visited after it that have none are one component.
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
    std::vector<Index> number;  // by first visit, from 1; 0 if not visited
    std::vector<Index> lowest;  // the lowest number reached that has no component yet
    std::vector<Index> pending; // visited, without a component yet
    std::vector<Step> steps;
    CancelPoint cancelPoint{1 << 16}; // steps between two polls
    Index lastNumber = 0;
    Index components = 0;
};
