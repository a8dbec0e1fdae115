#include "Import/Full/DocumentLinks.h"

#include "Base/StrongComponents.h"

void DocumentLinks::add(Index document, Index other)
{
    if (document == other)
        return;
    named.resize(std::max<std::size_t>(named.size(), std::max(document, other) + std::size_t(1)));
    named[document].push_back(other);
}

// Each document of a cycle is referred to by another one, but one of them must be a top. So strongly connected
// components are tested, and the first given document of one represents it.
std::vector<std::size_t> DocumentLinks::findTops(std::span<const Index> given) const
{
    const std::size_t last = given.empty() ? 0 : std::ranges::max(given);
    StrongComponents<const DocumentLinks&> components(*this, std::max(named.size(), last + 1));
    for (const Index document : given)
        components.visit(document);
    std::vector<bool> isNamed(components.componentCount()); // from another component, or has a top already
    for (const Index document : components.query())
        for (std::size_t link = 0; link < degree(document); ++link)
            if (const Index other = target(document, link);
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
