#pragma once

#include <cstddef>
#include <cstdlib>

/// Returns `bytes` bytes, which the caller frees with std::free(). Throws std::bad_alloc. Blocks of 4 MB and more ask
/// for large pages (madvise(2), MADV_HUGEPAGE), because a random access to a large table would otherwise also miss in
/// the page tables.
void* allocateLarge(std::size_t bytes);

/// Makes the heap ask for large pages for its first 30 MB, and keep what is freed. A program that allocates much once
/// and then ends calls it first. Pages that are never used cost nothing.
void useLargePagesInHeap();

/// The allocator of tables that may be large.
template <class T>
struct LargePages
{
    using value_type = T;

    LargePages() = default;
    template <class Other>
    LargePages(const LargePages<Other>&)
    {}

    T* allocate(std::size_t count)
    {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer
        return static_cast<T*>(allocateLarge(count * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t) { std::free(memory); }

    friend bool operator==(const LargePages&, const LargePages&) { return true; }
};
