#pragma once

#include <initializer_list>
#include <memory_resource>
#include <string_view>

/// Memory that only grows and goes at once, in growing chunks: a large one is mapped with its pages in place, which
/// costs the kernel a fraction of what faulting them in one by one does (mmap(2), MAP_POPULATE). Throws std::bad_alloc.
class Arena : public std::pmr::monotonic_buffer_resource
{
public:
    Arena();

    /// A copy of a text, or of one in pieces, that lasts as long as the arena or until release().
    std::string_view keep(std::string_view text) { return keep({text}); }

    std::string_view keep(std::initializer_list<std::string_view> pieces)
    {
        std::size_t size = 0;
        for (const std::string_view piece : pieces)
            size += piece.size();
        char* const text = static_cast<char*>(allocate(size, 1));
        char* end = text;
        for (const std::string_view piece : pieces)
            end += piece.copy(end, piece.size());
        return {text, size};
    }
};
