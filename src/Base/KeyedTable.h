#pragma once

#include "Base/Fingerprint.h"
#include "Base/LargePages.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

/// Returns the hash under which KeyedTable stores a key. A caller that looks the same key up in several tables computes
/// it once.
inline std::uint32_t keyHash(const Fingerprint& key)
{
    return static_cast<std::uint32_t>(key.first);
}

/// The same hash for the hash tables of the C++ library. Their own hash of a text has no secret seed, so a source could
/// be written to make its names collide.
struct KeyHash
{
    std::size_t operator()(std::string_view key) const { return keyHash(key); }
};

/// A seeded hash of numbers for the hash tables of the C++ library. std::hash returns the number itself, so that a
/// source could provoke collisions of keys that join two numbers: 80,000 anchors in 4 MB of JSON Schema took 20 s
/// instead of 0.5 s.
struct NumberHash
{
    std::size_t operator()(std::uint64_t number) const noexcept { return RunningHash::of(number); }
};

/// A hash table of pointers with text keys that iterates in the order in which the keys were first stored. The key is
/// not stored: `KeyOf(value)` reads it from the value, so it must not change while the value is in the table. Owns
/// nothing: the values must outlive their use in the table. Keys can't be removed. A key that is neither a text nor a
/// Fingerprint needs its own keyHash().
///
/// std::unordered_map has a node for each key and so a cache miss for each lookup. With it, whole imports took about
/// twice the time (docs/adr/hash-table.md).
template <class T, auto KeyOf, class Key = std::string_view>
class KeyedTable
{
public:
    /// Returns the value under `key`, or null. `hash` must be keyHash(key), here and below. Valid as long as the value
    /// itself, because the table stores pointers.
    T* find(const Key& key) const { return find(key, keyHash(key)); }

    T* find(const Key& key, std::uint32_t hash) const
    {
        if (slots.empty())
            return nullptr;
        const std::size_t at = slotOf(key, hash);
        return slots[at].entry == kFree ? nullptr : entries[slots[at].entry];
    }

    /// Stores `value` under its key. Replaces the value of an equal key, at its index. Pointers and indices of other
    /// values stay valid.
    void store(T* value) { store(value, keyHash(keyOf(*value))); }

    void store(T* value, std::uint32_t hash)
    {
        // At most three quarters full, so that probes stay short.
        if ((entries.size() + 1) * 4 > slots.size() * 3)
            growTo(slots.empty() ? 16 : slots.size() * 2);
        const std::size_t at = slotOf(keyOf(*value), hash);
        if (slots[at].entry != kFree) {
            entries[slots[at].entry] = value;
            return;
        }
        slots[at] = {hash, static_cast<std::uint32_t>(entries.size())};
        entries.push_back(value);
    }

    /// Makes room for `count` keys at once. Growing step by step would move each key again and again. `count` includes
    /// the keys that are stored already.
    void reserve(std::size_t count)
    {
        entries.reserve(count);
        std::size_t size = slots.empty() ? 16 : slots.size();
        while (count * 4 > size * 3)
            size *= 2;
        if (size > slots.size())
            growTo(size);
    }

    /// Prefetches the slot where the lookup of a key of this hash begins.
    void prefetch(std::uint32_t hash) const
    {
        if (!slots.empty())
            __builtin_prefetch(&slots[hash & (slots.size() - 1)]);
    }

    void clear()
    {
        entries.clear();
        slots.clear();
    }

    std::size_t size() const { return entries.size(); }
    bool empty() const { return entries.empty(); }

    /// Returns the value of the index-th key. Values may be added during a walk by index, which then reaches them, too.
    /// `index` must be less than size(), and isn't checked.
    T* operator[](std::size_t index) const { return entries[index]; }
    /// A walk by iterators must not store values with new keys, which may move the list.
    auto begin() const { return entries.begin(); }
    auto end() const { return entries.end(); }

private:
    static constexpr std::uint32_t kFree = 0xFFFFFFFF; // no entry has this index

    // Open addressing, linear probing. The hash is stored beside the index, so a probe seldom follows the pointer, and
    // growing never does.
    struct Slot
    {
        std::uint32_t hash = 0;
        std::uint32_t entry = kFree;
    };

    using Slots = std::vector<Slot, LargePages<Slot>>;

    static Key keyOf(const T& value) { return std::invoke(KeyOf, value); }

    // Returns the slot that holds the key, or else the free slot where it belongs. The search ends, because at least a
    // quarter of the slots is free.
    std::size_t slotOf(const Key& key, std::uint32_t hash) const
    {
        for (std::size_t at = hash & (slots.size() - 1);; at = (at + 1) & (slots.size() - 1)) {
            const Slot& slot = slots[at];
            if (slot.entry == kFree || (slot.hash == hash && keyOf(*entries[slot.entry]) == key))
                return at;
        }
    }

    // `size` is a power of two, so that a mask replaces the division. Keys in the table differ, so they are placed
    // without being compared.
    void growTo(std::size_t size)
    {
        Slots larger(size);
        for (const Slot& slot : slots) {
            if (slot.entry == kFree)
                continue;
            std::size_t at = slot.hash & (larger.size() - 1);
            while (larger[at].entry != kFree)
                at = (at + 1) & (larger.size() - 1);
            larger[at] = slot;
        }
        slots = std::move(larger);
    }

    std::vector<T*, LargePages<T*>> entries; // the values, in the order of their keys
    Slots slots;                             // their number is a power of two
};
