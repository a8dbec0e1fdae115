#pragma once

#include "Model/Element.h"

#include <deque>

/// A model's elements in output order: components before the types that use them.
class TypeList
{
public:
    /// Puts an element at the head, or at the tail if the known type of one of its children names a listed element,
    /// which then comes before it.
    void add(Element* element);

    /// Puts an element at the head, as add() does if none of the children has a known type, but without checking them.
    void addFirst(Element* element);

    /// Empties the list and marks its elements as neither placed nor listed.
    void clear();

    /// Empties the list without touching its elements, which may be freed already.
    void forget();

    /// Returns the number of elements that are types.
    int typeCount() const { return types; }

    std::size_t size() const { return elements.size(); }
    Element* operator[](std::size_t at) const { return elements[at]; }

    /// Prefetches what the documents of the types some places behind `at` are written from.
    void prefetchBehind(std::size_t at) const;

private:
    void note(Element* element);
    static bool refersToListed(const Element& element);

    std::deque<Element*> elements;
    int types = 0;
};
