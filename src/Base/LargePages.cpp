#include "Base/LargePages.h"

#include <climits>
#include <malloc.h>
#include <memory>
#include <new>
#include <sys/mman.h>

namespace {

// In bytes. Large pages have 2 MB on x86-64, and on ARM64 with normal pages of 4 kB.
constexpr std::size_t kLargePage = 1 << 21;
constexpr std::size_t kLargeBlock = 2 * kLargePage;
constexpr std::size_t kHeap = 15 * kLargePage; // below the highest threshold that mallopt(3) takes

} // namespace

void* allocateLarge(std::size_t bytes)
{
    const bool isLarge = bytes >= kLargeBlock;
    // C11 requires that the size for aligned_alloc() is a multiple of the alignment.
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
    // In bytes: 32 MB is the highest threshold that mallopt(3) allows, 128 kB the default. Each call also turns off
    // glibc's own adjustment of thresholds, which would raise them whenever a mapped block is freed.
    constexpr int highest = 1 << 25, standard = 1 << 17;
    // Freed memory stays in the heap: the system would clear its pages again for the next block.
    ::mallopt(M_TRIM_THRESHOLD, INT_MAX);
    ::mallopt(M_MMAP_THRESHOLD, highest);
    void* const block = std::malloc(kHeap); // room in the heap, because it is below the threshold
    void* start = block;
    std::size_t size = kHeap;
    if (block && std::align(kLargePage, kLargePage, start, size))
        ::madvise(start, size, MADV_HUGEPAGE);
    std::free(block); // stays in the heap, because trimming is off
    // From here on, a block of 128 kB or more for which the heap has no room is mapped separately, and returns to the
    // system when it is freed.
    ::mallopt(M_MMAP_THRESHOLD, standard);
}
