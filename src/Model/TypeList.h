#pragma once

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

    /// Empties the list; its elements are placed and listed no more.
    void clear();

    /// Empties the list without looking at its elements, which are gone.
    void forget();

    /// How many of the elements are types of their own.
    int typeCount() const { return types; }

    std::size_t size() const { return elements.size(); }
    Element* operator[](std::size_t at) const { return elements[at]; }

private:
    void note(Element* element);
    static bool refersToListed(const Element& element);

    std::deque<Element*> elements;
    int types = 0;
};
