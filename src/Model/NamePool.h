#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

class Element;
class NamePool;

/// An interned text of a model. Equal texts of one pool are the same Name, so passes over the types compare addresses
/// and need no hash table: the data of each name is stored here.
struct Name
{
    Name(std::string_view text, NamePool& pool) : text(text), pool(pool) {}

    /// Returns the name that remains after the first `size` bytes, empty if the name is not longer. Caches the last
    /// result, because the types of one import are in one folder, so `size` is nearly always the same.
    Name& behind(std::size_t size);

    const CString text;
    NamePool& pool;
    Element* element = nullptr; ///< the element of this name if the model merges by name, else null
    bool isListed = false;      ///< true if an element of this name is in the model's order

    // For UsageTable: the indices of the usage of a record of this name, and of the last usage of a field of this name.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;
    std::uint32_t recordUsage = kNone;
    std::uint32_t lastUsage = kNone;

private:
    std::uint32_t restFrom = 0;
    Name* rest = nullptr;
};

/// The names of one model, and the memory of its elements. Names keep their addresses until clear(). Only one thread at
/// a time may use a pool.
class NamePool
{
public:
    NamePool() = default;
    ~NamePool() { clear(); }
    NamePool(const NamePool&) = delete;
    NamePool& operator=(const NamePool&) = delete;

    /// Returns the name of a text and creates it if needed. The text is made fit for XML (toXmlText) by itself, so that
    /// equal names are equal in all documents.
    Name& intern(std::string_view text) { return intern(text, keyHash(text)); }

    /// Does the same for a text whose keyHash() is known: `hash` must be that of `text`.
    Name& intern(std::string_view text, std::uint32_t hash);

    /// Prefetches the slot where the lookup of a name of this hash begins.
    void prefetch(std::uint32_t hash) const { names.prefetch(hash); }

    /// Returns the name of a text, which must be fit for XML, or null.
    Name* find(std::string_view text) const { return names.find(text); }

    /// Frees all names and everything in the memory: elements of the model become invalid.
    void clear();

    Arena memory;

private:
    KeyedTable<Name, &Name::text> names;
};
