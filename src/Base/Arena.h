#pragma once

#include <initializer_list>
#include <memory_resource>
#include <string_view>

/// Memory that only grows and is freed all at once, in growing chunks of allocateLarge(). Throws std::bad_alloc.
/// Destructors of objects placed in it never run, so they must own nothing outside of it. One thread at a time may
/// allocate.
class Arena : public std::pmr::monotonic_buffer_resource
{
public:
    Arena();

    /// Returns a copy of a text, or of its pieces joined. Valid as long as the arena, or until release(). The copy has
    /// no terminating NUL.
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
