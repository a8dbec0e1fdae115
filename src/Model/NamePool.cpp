#include "Model/NamePool.h"

#include <memory>
#include <memory_resource>

Name& Name::behind(std::size_t size)
{
    if (!rest || restFrom != size) {
        rest = &pool.intern(size < text.size() ? std::string_view(text).substr(size) : std::string_view());
        restFrom = static_cast<std::uint32_t>(size);
    }
    return *rest;
}

// A text that is not fit for XML is never a key, so it takes the first lookup, the conversion, and a second one.
Name& NamePool::intern(std::string_view text, std::uint32_t hash)
{
    if (Name* const known = names.find(text, hash))
        return *known;
    if (!isXmlText(text)) // stored names are always fit for XML
        return intern(toXmlText(text));
    Name* const name = std::pmr::polymorphic_allocator<>(&memory).new_object<Name>(text, *this);
    names.store(name, hash);
    return *name;
}

void NamePool::clear()
{
    // The texts of names can lie on the heap, which releasing the arena would leak.
    for (Name* const name : names)
        std::destroy_at(name);
    names.clear();
    memory.release();
}
