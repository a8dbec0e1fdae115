#pragma once

#include "Model/Element.h"

#include <span>
#include <vector>

/// The links between the elements of a model as numbers: an ordering may go over them many times, and pointers to
/// elements would take it all over the memory. The links must not change in the meantime.
class LinkGraph
{
public:
    using Index = std::uint32_t;

    /// `owned` by their numbers; what they are linked to and has no number joins them when the links are read.
    explicit LinkGraph(std::span<Element* const> owned);
    ~LinkGraph();
    LinkGraph(const LinkGraph&) = delete;
    LinkGraph& operator=(const LinkGraph&) = delete;

    Index size() const { return static_cast<Index>(links.size()); }
    Element* operator[](Index element) const
    {
        return element < owned.size() ? owned[element] : others[element - owned.size()];
    }

    /// Reads the links of an element, unless they have been read. What the others below answer is valid from then on.
    void read(Index element);

    /// In the order in which they were added. Valid until more is read.
    std::span<const Index> parents(Index element) const
    {
        return {targets.data() + links[element].parents, targets.data() + links[element].children};
    }
    std::span<const Index> children(Index element) const
    {
        return {targets.data() + links[element].children, targets.data() + links[element].end};
    }

    /// Whether one of the children has a known type.
    bool hasKnownChild(Index element) const { return links[element].hasKnownChild; }

private:
    // Where an element's parents, and behind them its children, stand among the targets.
    struct Links
    {
        Index parents = 0;
        Index children = 0;
        Index end = 0;
        bool areRead = false;
        bool hasKnownChild = false;
    };

    Index numberOf(Element* element);

    std::span<Element* const> owned;
    std::vector<Element*> others; // numbered from behind the last one owned on
    std::vector<Links> links;
    std::vector<Index> targets;
};
