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
    types += element->isTypeOfItsOwn();
    if (namesAreKept)
        names.store(element);
}

void TypeList::clear()
{
    elements.clear();
    names.clear();
    namesAreKept = false;
    types = 0;
}

bool TypeList::refersToListed(const Element& element)
{
    for (const Element* child : element.queryChildren()) {
        if (!child->hasKnownType())
            continue;
        const std::string_view known = child->queryKnownType();
        // The short name that is left of the known type when the child's folder is taken off its front.
        const std::size_t folder = child->queryPath().size();
        if (isListed(folder < known.size() ? known.substr(folder) : std::string_view()))
            return true;
    }
    return false;
}

bool TypeList::isListed(std::string_view name)
{
    if (!namesAreKept) {
        for (Element* listed : elements)
            names.store(listed);
        namesAreKept = true;
    }
    return names.find(name) != nullptr;
}
