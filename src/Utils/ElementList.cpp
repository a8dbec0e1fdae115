#include "Utils/Element.h"

#include <algorithm>

namespace {

// Up to this many entries a walk over the list is quicker than an index, and most lists stay below it.
constexpr std::uint32_t kWalked = 16;

template <class T>
T* allocate(std::size_t count, std::pmr::memory_resource& memory)
{
    return std::pmr::polymorphic_allocator<T>(&memory).allocate(count);
}

} // namespace

bool ElementList::add(Element* element, std::pmr::memory_resource& memory)
{
    if (!index && count > kWalked)
        makeIndex(memory);
    if (positionOf(element) != kNone)
        return false;
    append(element, memory);
    return true;
}

void ElementList::append(Element* element, std::pmr::memory_resource& memory)
{
    if (count == capacity)
        grow(memory);
    items[count++] = element;
    if (index)
        enter(count - 1);
}

void ElementList::replace(Element* old, Element* replacement)
{
    const std::uint32_t position = positionOf(old);
    if (position == kNone)
        return;
    items[position] = replacement;
    if (index)
        enter(position); // the slot of `old` stays, and keeps the probes behind it whole
}

std::uint32_t ElementList::positionOf(const Element* element) const
{
    if (!index) {
        Element** const found = std::find(begin(), end(), element);
        return found == end() ? kNone : static_cast<std::uint32_t>(found - begin());
    }
    for (std::size_t at = firstSlot(element);; at = (at + 1) & (4 * std::size_t{capacity} - 1))
        if (index[at] == kNone || items[index[at]] == element)
            return index[at];
}

void ElementList::grow(std::pmr::memory_resource& memory)
{
    capacity = capacity ? capacity * 2 : 1;
    Element** const larger = allocate<Element*>(capacity, memory);
    std::copy(begin(), end(), larger);
    items = larger;
    if (index)
        makeIndex(memory);
}

void ElementList::makeIndex(std::pmr::memory_resource& memory)
{
    index = allocate<std::uint32_t>(4 * std::size_t{capacity}, memory);
    buildIndex();
}

void ElementList::buildIndex()
{
    std::fill_n(index, 4 * std::size_t{capacity}, kNone);
    entered = 0;
    for (std::uint32_t position = 0; position < count; ++position)
        enter(position);
}

void ElementList::enter(std::uint32_t position)
{
    if (entered == 3 * capacity) { // of them at most `capacity` by items
        buildIndex();
        return;
    }
    std::size_t at = firstSlot(items[position]);
    while (index[at] != kNone)
        at = (at + 1) & (4 * std::size_t{capacity} - 1);
    index[at] = position;
    ++entered;
}

std::size_t ElementList::firstSlot(const Element* element) const
{
    const std::size_t number = reinterpret_cast<std::uintptr_t>(element) / alignof(Element);
    return number * 0x9E3779B97F4A7C15 >> 20 & (4 * std::size_t{capacity} - 1);
}
