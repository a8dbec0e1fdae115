#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

#include <memory_resource>
#include <optional>

/// Interns texts: equal texts have equal numbers, so they are compared and hashed as numbers afterwards. Numbers count
/// up from 0, which is the empty text, without gaps, so that they can be indices. Texts are never forgotten.
class NameTable
{
public:
    using Id = std::uint32_t;

    NameTable() { intern({}); }

    /// Returns the number of a text. A new text is copied.
    Id intern(std::string_view text)
    {
        const std::uint32_t hash = keyHash(text);
        if (const Name* known = index.find(text, hash))
            return known->id;
        const auto id = static_cast<Id>(index.size());
        Name* const made = std::pmr::polymorphic_allocator<>(&memory).new_object<Name>(Name{{}, id});
        made->text = memory.keep(text); // follows it, so that a lookup misses the processor's cache only once
        index.store(made, hash);
        return id;
    }

    /// Returns the number of a text, or nothing if it was never interned.
    std::optional<Id> find(std::string_view text) const
    {
        const Name* known = index.find(text, keyHash(text));
        return known ? std::optional(known->id) : std::nullopt;
    }

    /// Returns the text of a number. Valid as long as the table. `id` must be a number that intern() returned.
    std::string_view operator[](Id id) const { return index[id]->text; }

    /// Returns how many numbers there are, that of the empty text included.
    std::size_t size() const { return index.size(); }

private:
    // An entry of the index, in `memory`. `id` is its index in the table, so a number finds its text without hashing.
    struct Name
    {
        std::string_view text;
        Id id;
    };

    Arena memory;
    KeyedTable<Name, &Name::text> index;
};
