#include "Utils/Element.h"

#include <algorithm>

namespace {

// Up to this many entries a walk over the list is quicker than an index, and most lists stay below it.
constexpr std::uint32_t kWalked = 16;

Element** allocate(std::size_t count, std::pmr::memory_resource& memory)
{
    return static_cast<Element**>(memory.allocate(count * sizeof(Element*), alignof(Element*)));
}

} // namespace

bool ElementList::add(Element* element, std::pmr::memory_resource& memory)
{
    if (contains(element))
        return false;
    if (count == capacity)
        grow(memory);
    items[count++] = element;
    if (index)
        *slotOf(element) = element;
    return true;
}

void ElementList::replace(Element* old, Element* replacement)
{
    Element** const place = std::find(begin(), end(), old);
    if (place == end())
        return;
    *place = replacement;
    if (index) { // taking one out of a probed table breaks the probes behind it
        std::fill_n(index, 2 * capacity, nullptr);
        for (Element* item : *this)
            *slotOf(item) = item;
    }
}

bool ElementList::contains(const Element* element) const
{
    return index ? *slotOf(element) != nullptr : std::find(begin(), end(), element) != end();
}

void ElementList::grow(std::pmr::memory_resource& memory)
{
    capacity = capacity ? capacity * 2 : 1;
    Element** const larger = allocate(capacity, memory);
    std::copy(begin(), end(), larger);
    items = larger;
    if (capacity <= kWalked)
        return;
    index = allocate(2 * capacity, memory);
    std::fill_n(index, 2 * capacity, nullptr);
    for (Element* item : *this)
        *slotOf(item) = item;
}

// Where `element` stands in the index, or the free place where it would.
Element** ElementList::slotOf(const Element* element) const
{
    const std::size_t mask = 2 * static_cast<std::size_t>(capacity) - 1;
    for (std::size_t at = std::hash<const Element*>()(element) / alignof(Element) * 0x9E3779B97F4A7C15 >> 20 & mask;;
         at = (at + 1) & mask)
        if (!index[at] || index[at] == element)
            return &index[at];
}
