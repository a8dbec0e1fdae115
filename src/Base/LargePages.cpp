#include "Base/LargePages.h"

#include <new>
#include <sys/mman.h>

namespace {

constexpr std::size_t kLargePage = 1 << 21;

} // namespace

void* allocateLarge(std::size_t bytes)
{
    const bool isLarge = bytes >= kLargeMemory;
    void* const memory = isLarge ? std::aligned_alloc(kLargePage, (bytes + kLargePage - 1) / kLargePage * kLargePage)
                                 : std::malloc(bytes);
    if (!memory)
        throw std::bad_alloc();
    if (isLarge)
        ::madvise(memory, bytes, MADV_HUGEPAGE); // only a hint: ignored if the system has no large pages
    return memory;
}
