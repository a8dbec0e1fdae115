#pragma once

#include "Base/KeyedTable.h"
#include "Model/Element.h"

#include <deque>

/// A model's elements in output order: a component before the types that use it.
class TypeList
{
public:
    /// Puts an element at the head, or at the tail when one of its children's known types names a listed element.
    void add(Element* element);

    /// Puts an element at the head: add() of one whose children have no known types.
    void addFirst(Element* element);

    void clear();

    /// How many of the elements are types of their own.
    int typeCount() const { return types; }

    std::size_t size() const { return elements.size(); }
    Element* operator[](std::size_t at) const { return elements[at]; }

private:
    void note(Element* element);
    bool refersToListed(const Element& element);
    bool isListed(std::string_view name);

    std::deque<Element*> elements;
    KeyedTable<Element, &Element::queryName> names; // of the elements, once somebody has asked for one
    bool namesAreKept = false;
    int types = 0;
};
