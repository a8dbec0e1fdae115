#include "Model/LinkGraph.h"

LinkGraph::LinkGraph(std::span<Element* const> owned) : owned(owned), links(owned.size())
{
    targets.reserve(4 * owned.size());
}

LinkGraph::~LinkGraph()
{
    // These elements belong to no model, and a later graph numbers them again.
    for (Element* element : others)
        element->setNumber(Element::kNoNumber);
}

void LinkGraph::read(Index index)
{
    if (links[index].areRead)
        return;
    const Element& element = *(*this)[index];
    prefetch(element.queryParents());
    prefetch(element.queryChildren());
    Links read{static_cast<Index>(targets.size()), 0, 0, true};
    for (Element* parent : element.queryParents())
        targets.push_back(numberOf(parent));
    read.children = static_cast<Index>(targets.size());
    for (Element* child : element.queryChildren()) {
        targets.push_back(numberOf(child));
        read.hasKnownChild |= child->hasKnownType();
    }
    read.end = static_cast<Index>(targets.size());
    links[index] = read;
}

// Returns the number of an element, which gets one if it has none. Links must not lead to elements of other models,
// because their numbers would be mistaken for this model's.
LinkGraph::Index LinkGraph::numberOf(Element* element)
{
    if (element->queryNumber() >= links.size()) {
        element->setNumber(size());
        others.push_back(element);
        links.emplace_back();
    }
    return element->queryNumber();
}
