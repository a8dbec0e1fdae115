#pragma once

#include <cstddef>
#include <cstdlib>

/// Returns `bytes` bytes, which the caller frees with std::free(). Throws std::bad_alloc. Blocks of 4 MB and more ask
/// for large pages (madvise(2), MADV_HUGEPAGE), because a random access to a large table would otherwise also miss in
/// the page tables. The memory is not cleared. Its alignment is that of std::malloc(), or 2 MB for a block of 4 MB and
/// more. Large pages made an import of 50,000 types with different names 14 % faster.
void* allocateLarge(std::size_t bytes);

/// Makes the heap ask for large pages for its first 30 MB, and keep what is freed. A program that allocates much once
/// and then ends calls it first. Pages that are never used cost nothing. Without it a quarter of the time of a large
/// import goes into page faults: glibc returns freed blocks to the system, which clears their pages for the next block.
void useLargePagesInHeap();

/// The allocator of tables that may be large. Stateless: any instance may free what another one allocated.
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
