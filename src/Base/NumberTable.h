#pragma once

#include "Base/Fingerprint.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// A hash table from numbers to numbers, for example from a pair of indices joined into one number. The hash is seeded,
/// so that no source can provoke collisions. Keys can't be removed.
class NumberTable
{
public:
    /// Stores `value` if the key has none yet. Returns a reference to the value of the key, valid until the next call,
    /// and whether it is new.
    std::pair<std::uint32_t&, bool> insert(std::uint64_t key, std::uint32_t value)
    {
        if ((count + 1) * 2 > slots.size())
            grow();
        Slot& slot = slots[placeOf(key)];
        const bool isNew = !slot.isTaken;
        if (isNew) {
            slot = {key, value, true};
            ++count;
        }
        return {slot.value, isNew};
    }

    /// Returns the value of a key, or null. Valid until the next insert().
    const std::uint32_t* find(std::uint64_t key) const
    {
        if (slots.empty())
            return nullptr;
        const Slot& slot = slots[placeOf(key)];
        return slot.isTaken ? &slot.value : nullptr;
    }

private:
    // Open addressing, linear probing, at most half full. A flag marks the taken slots, because every number may be a
    // key.
    struct Slot
    {
        std::uint64_t key = 0;
        std::uint32_t value = 0;
        bool isTaken = false;
    };

    std::size_t placeOf(std::uint64_t key) const
    {
        // Eight consecutive keys share two cache lines (eight slots of 16 bytes), because names that are interned
        // together are looked up together. With a hash of the whole key, lookups in a set of 200 schemas took twice the
        // time.
        std::size_t at = (RunningHash::of(key / 8) * 8 + key % 8) & (slots.size() - 1);
        while (slots[at].isTaken && slots[at].key != key)
            at = (at + 1) & (slots.size() - 1);
        return at;
    }

    // All slots move, so references and pointers to values become invalid.
    void grow()
    {
        std::vector<Slot> before(slots.empty() ? 16 : slots.size() * 2);
        before.swap(slots);
        for (const Slot& slot : before)
            if (slot.isTaken)
                slots[placeOf(slot.key)] = slot;
    }

    std::vector<Slot> slots; // their number is a power of two
    std::size_t count = 0;
};
