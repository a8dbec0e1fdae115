#include "Base/LargePages.h"

#include <climits>
#include <malloc.h>
#include <memory>
#include <new>
#include <sys/mman.h>

namespace {

constexpr std::size_t kLargePage = 1 << 21;
constexpr std::size_t kLargeBlock = 2 * kLargePage;
constexpr std::size_t kHeap = 15 * kLargePage; // below the highest threshold that mallopt(3) takes

} // namespace

void* allocateLarge(std::size_t bytes)
{
    const bool isLarge = bytes >= kLargeBlock;
    void* const memory = isLarge ? std::aligned_alloc(kLargePage, (bytes + kLargePage - 1) / kLargePage * kLargePage)
                                 : std::malloc(bytes);
    if (!memory)
        throw std::bad_alloc();
    if (isLarge)
        ::madvise(memory, bytes, MADV_HUGEPAGE); // only a hint: ignored if the system has no large pages
    return memory;
}

void useLargePagesInHeap()
{
    constexpr int highest = 1 << 25, standard = 1 << 17;
    // Freed memory stays in the heap: the system would clear its pages again for the next block.
    ::mallopt(M_TRIM_THRESHOLD, INT_MAX);
    ::mallopt(M_MMAP_THRESHOLD, highest);
    void* const block = std::malloc(kHeap); // room in the heap, because it is below the threshold
    void* start = block;
    std::size_t size = kHeap;
    if (block && std::align(kLargePage, kLargePage, start, size))
        ::madvise(start, size, MADV_HUGEPAGE);
    std::free(block);
    ::mallopt(M_MMAP_THRESHOLD, standard);
}
