#include "Model/ElementList.h"

#include "Base/Fingerprint.h"

#include <algorithm>
#include <bit>

namespace {

// Up to this length, a linear search is faster than an index. Most lists stay below it.
constexpr std::uint32_t kWalked = 16;

// A list of fields is searched once for each field that becomes a table, so an index pays later. Without an index, the
// time for a record of 500,000 repeated fields was quadratic.
constexpr std::uint32_t kWalkedToReplace = 256;

} // namespace

bool ElementList::add(Element* element, std::pmr::memory_resource& memory)
{
    if (!isIndexed && count > kWalked)
        moveTo(capacity, true, memory);
    if (positionOf(element) != kNone)
        return false;
    append(element, memory);
    return true;
}

void ElementList::append(Element* element, std::pmr::memory_resource& memory)
{
    if (count == 0 && capacity == 0) {
        single = element;
        count = 1;
        return;
    }
    if (count >= capacity)
        moveTo(capacity ? capacity * 2 : 4, isIndexed, memory);
    items[count++] = element;
    if (isIndexed)
        enter(count - 1);
}

void ElementList::reserve(std::uint32_t size, std::pmr::memory_resource& memory)
{
    if (count == 0 && capacity == 0 && size > 1)
        moveTo(size, false, memory);
}

void ElementList::replace(Element* old, Element* replacement, std::size_t likely, std::pmr::memory_resource& memory)
{
    auto position = static_cast<std::uint32_t>(likely);
    if (likely >= count || (*this)[likely] != old) {
        if (!isIndexed && count > kWalkedToReplace)
            moveTo(capacity, true, memory);
        position = positionOf(old);
    }
    if (position == kNone)
        return;
    (capacity == 0 ? single : items[position]) = replacement;
    if (isIndexed)
        enter(position); // the slot of `old` stays, so that probes go on past it
}

// Returns the position of an element; kNone if it is not listed. A probe ends, because at least a quarter of the slots
// is free.
std::uint32_t ElementList::positionOf(const Element* element) const
{
    if (!isIndexed) {
        Element* const* const found = std::find(begin(), end(), element);
        return found == end() ? kNone : static_cast<std::uint32_t>(found - begin());
    }
    for (std::size_t at = firstSlot(element);; at = (at + 1) & (slotCount() - 1))
        if (index()[at] == kNone || items[index()[at]] == element)
            return index()[at];
}

// Moves the elements to storage for `newCapacity`, with an index or without. The memory comes from the arena and is not
// initialised.
void ElementList::moveTo(std::uint32_t newCapacity, bool withIndex, std::pmr::memory_resource& memory)
{
    if (withIndex)
        newCapacity = std::bit_ceil(newCapacity); // the mask of slots needs it
    const std::size_t indexSize = withIndex ? 4 * std::size_t{newCapacity} + 1 : 0;
    const std::size_t bytes = newCapacity * sizeof(void*) + indexSize * sizeof(std::uint32_t);
    // The old storage is not freed: the arena frees everything at once.
    auto* const larger = static_cast<Element**>(memory.allocate(bytes, alignof(Element*)));
    std::copy(begin(), end(), larger);
    items = larger;
    capacity = newCapacity;
    isIndexed = withIndex;
    if (withIndex)
        buildIndex();
}

void ElementList::buildIndex()
{
    std::fill_n(index(), slotCount(), kNone);
    entered() = 0;
    for (std::uint32_t position = 0; position < count; ++position)
        enter(position);
}

// Adds the element at a position to the index. Slots of replaced elements stay used, so the index is rebuilt when three
// quarters are used. A rebuild makes at most `capacity` entries and comes after at least twice as many, so the average
// cost of an entry is constant.
void ElementList::enter(std::uint32_t position)
{
    if (entered() == 3 * capacity) { // at most `capacity` of them are live
        buildIndex();
        return;
    }
    std::size_t at = firstSlot(items[position]);
    while (index()[at] != kNone)
        at = (at + 1) & (slotCount() - 1);
    index()[at] = position;
    ++entered();
}

std::size_t ElementList::firstSlot(const Element* element) const
{
    return RunningHash::of(reinterpret_cast<std::uintptr_t>(element)) & (slotCount() - 1);
}
