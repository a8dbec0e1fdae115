#include "Base/Secret.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <sys/prctl.h>

namespace {

// glibc keeps up to seven freed blocks of each small size for reuse (the tcache), and M_PERTURB does not overwrite
// those. Allocating eight of each size reaches them all. All other blocks are overwritten when they are freed
// (mallopt(3)).
void wipeKeptBlocks()
{
    // The usable bytes of blocks that the tcache keeps on 64-bit systems: from 24 to 1032 in steps of 16.
    constexpr std::size_t kStep = 16, kLargest = 1032;
    for (std::size_t size = 24; size <= kLargest; size += kStep) {
        std::array<void*, 8> blocks;
        for (void*& block : blocks) {
            block = std::malloc(size);
            if (block)
                explicit_bzero(block, size);
        }
        for (void* block : blocks)
            std::free(block);
    }
}

// Not inlined, so that its array lies below the caller's frame, where the earlier calls were.
[[gnu::noinline]] void wipeStack()
{
    std::array<char, 128 * 1024> below; // the part of the stack that earlier calls used
    explicit_bzero(below.data(), below.size());
}

} // namespace

void wipe(CString& secret)
{
    secret.resize(secret.capacity()); // within the capacity, so it never reallocates
    // A memset() of memory that is not read again could be optimised away.
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

MemoryWipe::MemoryWipe()
{
    mallopt(M_PERTURB, 0xff); // glibc then overwrites each freed block
}

MemoryWipe::~MemoryWipe()
{
    wipeKeptBlocks();
    wipeStack();
    mallopt(M_PERTURB, 0);
}

void keepOutOfCores()
{
    prctl(PR_SET_DUMPABLE, 0);
}
