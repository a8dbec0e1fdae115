#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>

class Element;

/// A list of elements in the order in which they were added, each at most once. Does not own them; its memory comes
/// from an arena and is never freed singly. Most elements have one parent, which is stored without an allocation.
class ElementList
{
public:
    /// Appends `element`, with room from `memory`. Returns false and changes nothing if it is already listed.
    bool add(Element* element, std::pmr::memory_resource& memory);

    /// Appends an element that must not be listed yet, without a search.
    void append(Element* element, std::pmr::memory_resource& memory);

    /// Makes room for `size` elements if the list is empty; else does nothing.
    void reserve(std::uint32_t size, std::pmr::memory_resource& memory);

    /// Puts `replacement` in the place of `old`, with room for an index from `memory`. Does nothing if `old` is not
    /// listed. Looks at the position `likely` first; only elsewhere `old` must be searched for.
    void replace(Element* old, Element* replacement, std::size_t likely, std::pmr::memory_resource& memory);

    std::size_t size() const { return count; }
    Element* operator[](std::size_t at) const { return begin()[at]; }
    Element* const* begin() const { return capacity == 0 ? &single : items; }
    Element* const* end() const { return begin() + count; }

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::uint32_t positionOf(const Element* element) const;
    void moveTo(std::uint32_t newCapacity, bool withIndex, std::pmr::memory_resource& memory);
    void buildIndex();
    void enter(std::uint32_t position);
    std::size_t slotCount() const { return 4 * std::size_t{capacity}; }
    std::uint32_t* index() const { return reinterpret_cast<std::uint32_t*>(items + capacity); }
    std::uint32_t& entered() const { return index()[slotCount()]; }
    std::size_t firstSlot(const Element* element) const;

    // Storage for `capacity` elements, or for one element in `single`. In a long list, a hash table of positions
    // follows the elements, and the number of its used slots, stale ones of replaced elements included.
    union {
        Element* single = nullptr;
        Element** items;
    };
    std::uint32_t count = 0;
    std::uint32_t capacity : 31 = 0;
    std::uint32_t isIndexed : 1 = 0;
};

/// Prefetches the elements that a loop is about to visit, at most 16. They are scattered in memory, so their cache
/// misses overlap.
inline void prefetch(const ElementList& elements)
{
    for (std::size_t i = 0; i < elements.size() && i < 16; ++i)
        __builtin_prefetch(elements[i]);
}
