#pragma once

#include <cstddef>
#include <cstdlib>

/// Memory of `bytes` bytes, to be given back by std::free(). Throws std::bad_alloc. For much of it the system is asked
/// for large pages (madvise(2), MADV_HUGEPAGE): in a table that is read at random each look-up waits for its memory
/// alone then, not for the page tables that lead there.
void* allocateLarge(std::size_t bytes);

/// The allocator of tables that may be large.
template <class T>
struct LargePages
{
    using value_type = T;

    LargePages() = default;
    template <class Other>
    LargePages(const LargePages<Other>&)
    {}

    T* allocate(std::size_t count) { return static_cast<T*>(allocateLarge(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t) { std::free(memory); }

    friend bool operator==(const LargePages&, const LargePages&) { return true; }
};
