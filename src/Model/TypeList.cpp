#include "Model/TypeList.h"

void TypeList::add(Element* element)
{
    if (!refersToListed(*element))
        return addFirst(element);
    elements.push_back(element);
    note(element);
}

void TypeList::addFirst(Element* element)
{
    elements.push_front(element);
    note(element);
}

void TypeList::note(Element* element)
{
    types += element->hasOwnDocument();
    element->setListed(true);
}

void TypeList::clear()
{
    for (Element* element : elements) {
        element->setPlaced(false);
        element->setListed(false);
    }
    forget();
}

void TypeList::forget()
{
    elements.clear();
    types = 0;
}

// Each step needs what an earlier one has prefetched: the type, its list of children, the children, their names.
void TypeList::prefetchBehind(std::size_t at) const
{
    constexpr std::size_t kType = 12, kList = 8, kChildren = 4, kNames = 2;
    if (at + kType >= elements.size())
        return;
    __builtin_prefetch(elements[at + kType]);
    __builtin_prefetch(elements[at + kList]->queryChildren().begin());
    prefetch(elements[at + kChildren]->queryChildren());
    const ElementList& children = elements[at + kNames]->queryChildren();
    for (std::size_t i = 0; i < children.size() && i < 16; ++i)
        __builtin_prefetch(&children[i]->queryName());
}

// A known type is a full name, so the child's folder is cut off before the lookup. Each name has a flag whether it is
// listed, so no table of the listed types is needed.
bool TypeList::refersToListed(const Element& element)
{
    for (const Element* child : element.queryChildren())
        if (Name* const known = child->queryKnownName(); known && known->behind(child->queryPath().size()).isListed)
            return true;
    return false;
}
