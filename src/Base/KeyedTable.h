#pragma once

#include "Base/Fingerprint.h"
#include "Base/LargePages.h"

#include <functional>
#include <utility>
#include <vector>

/// The hash under which KeyedTable stores a key. A caller that looks the same key up in several tables computes it
/// once.
inline std::uint32_t keyHash(const Fingerprint& key)
{
    return static_cast<std::uint32_t>(key.first);
}

/// The same for the hash tables of the C++ library, whose own hash of a text is known to whoever writes the source.
struct KeyHash
{
    std::size_t operator()(std::string_view key) const { return keyHash(key); }
};

/// A string-keyed table of pointers that iterates in the order in which the keys were first stored. The key is not
/// stored: `KeyOf(value)` reads it from the value, so it must not change while the value is in the table. Owns nothing.
/// A key that is more than a text brings its own keyHash().
template <class T, auto KeyOf, class Key = std::string_view>
class KeyedTable
{
public:
    /// The value under `key`, or null.
    T* find(const Key& key) const { return find(key, keyHash(key)); }

    T* find(const Key& key, std::uint32_t hash) const
    {
        if (slots.empty())
            return nullptr;
        const std::size_t at = slotOf(key, hash);
        return slots[at].entry == kFree ? nullptr : entries[slots[at].entry];
    }

    /// Stores `value` under its key, in the place of the value that was there before.
    void store(T* value) { store(value, keyHash(keyOf(*value))); }

    void store(T* value, std::uint32_t hash)
    {
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

    /// Makes room for `count` keys at once: a table that grows on the way there moves each key once more.
    void reserve(std::size_t count)
    {
        entries.reserve(count);
        std::size_t size = slots.empty() ? 16 : slots.size();
        while (count * 4 > size * 3)
            size *= 2;
        if (size > slots.size())
            growTo(size);
    }

    /// Asks the memory for the place where a key of this hash is looked for.
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

    /// The value stored under the index-th key. Valid while values are added, so a walk by index sees the new ones too.
    T* operator[](std::size_t index) const { return entries[index]; }
    auto begin() const { return entries.begin(); }
    auto end() const { return entries.end(); }

private:
    static constexpr std::uint32_t kFree = 0xFFFFFFFF;

    // Open addressing, linear probing. The hash stands beside the index, so that a probe seldom has to
    // follow the pointer, and growing never does.
    struct Slot
    {
        std::uint32_t hash = 0;
        std::uint32_t entry = kFree;
    };

    using Slots = std::vector<Slot, LargePages<Slot>>;

    static Key keyOf(const T& value) { return std::invoke(KeyOf, value); }

    std::size_t slotOf(const Key& key, std::uint32_t hash) const
    {
        for (std::size_t at = hash & (slots.size() - 1);; at = (at + 1) & (slots.size() - 1)) {
            const Slot& slot = slots[at];
            if (slot.entry == kFree || (slot.hash == hash && keyOf(*entries[slot.entry]) == key))
                return at;
        }
    }

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

    std::vector<T*, LargePages<T*>> entries;
    Slots slots; // a power of two
};
