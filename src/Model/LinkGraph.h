#pragma once

#include "Base/LargePages.h"
#include "Model/Element.h"

#include <span>
#include <vector>

/// The links between a model's elements as numbers in compact arrays. The ordering walks them many times, and pointers
/// to elements would scatter its reads over memory. The elements must not change their links, nor be freed, while this
/// lives.
class LinkGraph
{
public:
    using Index = std::uint32_t;

    /// `owned` are the elements by number. Linked elements without a number join when links are read, and have a number
    /// as long as the graph lives.
    explicit LinkGraph(std::span<Element* const> owned);
    ~LinkGraph();
    LinkGraph(const LinkGraph&) = delete;
    LinkGraph& operator=(const LinkGraph&) = delete;

    /// Returns the number of elements. read() may increase it.
    Index size() const { return static_cast<Index>(links.size()); }
    Element* operator[](Index element) const
    {
        return element < owned.size() ? owned[element] : others[element - owned.size()];
    }

    /// Reads the links of an element, once; further calls do nothing. The functions below are valid after it.
    void read(Index element);

    /// Return the parents or children in the order in which they were added. Valid until the next read().
    std::span<const Index> parents(Index element) const
    {
        return {targets.data() + links[element].parents, targets.data() + links[element].children};
    }
    std::span<const Index> children(Index element) const
    {
        return {targets.data() + links[element].children, targets.data() + links[element].end};
    }

    /// Returns whether one of the children has a known type.
    bool hasKnownChild(Index element) const { return links[element].hasKnownChild; }

private:
    // The range of an element's parents in `targets`, followed by that of its children.
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
    std::vector<Element*> others; // the other elements, numbered after `owned`
    std::vector<Links, LargePages<Links>> links;
    std::vector<Index, LargePages<Index>> targets;
};
