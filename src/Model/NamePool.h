#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"

class Element;
class NamePool;

/// A text of a model. Equal texts of one pool are the same Name, so passes over the types compare addresses and need no
/// table: what a model keeps for each name is kept here.
struct Name
{
    Name(std::string_view text, NamePool& pool) : text(text), pool(pool) {}

    /// The name that is left behind the first `size` bytes, "" for a name that is no longer than that. Remembers the
    /// last answer: the types of one import lie in one folder.
    Name& behind(std::size_t size);

    const CString text;
    NamePool& pool;
    Element* element = nullptr; ///< the element of this name if the model merges by name; null if there is none
    bool isListed = false;      ///< an element of this name is in the model's order

    // For UsageTable: where the usage of a record of this name stands, whether there was more than one such record, and
    // where the last usage of a field of this name stands.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;
    bool isReopened = false;
    std::uint32_t recordUsage = kNone;
    std::uint32_t lastUsage = kNone;

private:
    std::uint32_t restFrom = 0;
    Name* rest = nullptr;
};

/// The texts of one model, each once, and the memory for its elements. Names stay where they are until clear().
class NamePool
{
public:
    NamePool() = default;
    ~NamePool() { clear(); }
    NamePool(const NamePool&) = delete;
    NamePool& operator=(const NamePool&) = delete;

    /// The name of that text, which is made if there is none. The text is made fit for XML here (toXmlText), as a whole
    /// and by itself, so that equal names stay equal in all documents.
    Name& intern(std::string_view text) { return intern(text, keyHash(text)); }

    /// The same for a text whose keyHash() is known.
    Name& intern(std::string_view text, std::uint32_t hash);

    /// Asks the memory for the place where a name of this hash is looked for.
    void prefetch(std::uint32_t hash) const { names.prefetch(hash); }

    /// The name of that text, which must be fit for XML, or null.
    Name* find(std::string_view text) const { return names.find(text); }

    /// Frees all names, and all that lies in the memory.
    void clear();

    Arena memory;

private:
    KeyedTable<Name, &Name::text> names;
};
