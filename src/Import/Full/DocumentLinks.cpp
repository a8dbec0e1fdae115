#include "Import/Full/DocumentLinks.h"

#include "Base/StrongComponents.h"

namespace {

struct Graph
{
    std::span<const std::vector<std::uint32_t>> targets;

    std::size_t degree(std::uint32_t document) const
    {
        return document < targets.size() ? targets[document].size() : 0;
    }
    std::uint32_t target(std::uint32_t document, std::size_t link) const { return targets[document][link]; }
};

} // namespace

void DocumentLinks::add(Index document, Index other)
{
    if (document == other)
        return;
    named.resize(std::max<std::size_t>(named.size(), std::max(document, other) + std::size_t(1)));
    named[document].push_back(other);
}

std::vector<std::size_t> DocumentLinks::findTops(std::span<const Index> given) const
{
    const Graph graph{named};
    const std::size_t last = given.empty() ? 0 : std::ranges::max(given);
    StrongComponents components(graph, std::max(named.size(), last + 1));
    for (const Index document : given)
        components.visit(document);
    std::vector<bool> isNamed(components.componentCount()); // from another component, or has a top already
    for (const Index document : components.query())
        for (std::size_t link = 0; link < graph.degree(document); ++link)
            if (const Index other = graph.target(document, link);
                components.componentOf(other) != components.componentOf(document))
                isNamed[components.componentOf(other)] = true;
    std::vector<std::size_t> tops;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const Index component = components.componentOf(given[i]);
        if (!isNamed[component])
            tops.push_back(i);
        isNamed[component] = true;
    }
    return tops;
}
