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

// The lookup comes before the check, because most texts are known names. A text that is not fit for XML is never
// stored, so it takes a second lookup after the conversion.
Name& NamePool::intern(std::string_view text, std::uint32_t hash)
{
    if (Name* const known = names.find(text, hash))
        return *known;
    if (!isXmlText(text))
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
