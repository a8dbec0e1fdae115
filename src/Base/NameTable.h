#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

#include <deque>
#include <optional>

/// Texts by number: equal texts have equal numbers, which rise from 0, the empty text.
class NameTable
{
public:
    using Id = std::uint32_t;

    NameTable() { intern({}); }

    /// The number of a text, which is copied when it is new.
    Id intern(std::string_view text)
    {
        const std::size_t hash = keyHash(text);
        if (const Name* known = index.find(text, hash))
            return known->id;
        const auto id = static_cast<Id>(names.size());
        index.store(&names.emplace_back(Name{texts.keep(text), id}), hash);
        return id;
    }

    /// The number of a text that has one.
    std::optional<Id> find(std::string_view text) const
    {
        const Name* known = index.find(text, keyHash(text));
        return known ? std::optional(known->id) : std::nullopt;
    }

    /// Valid as long as the table.
    std::string_view operator[](Id id) const { return index[id]->text; }

    std::size_t size() const { return names.size(); }

private:
    struct Name
    {
        std::string_view text;
        Id id;
    };

    Arena texts;
    std::deque<Name> names;
    KeyedTable<Name, &Name::text> index;
};
