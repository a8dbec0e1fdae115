#include "Base/Secret.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <sys/prctl.h>

namespace {

// The allocator keeps up to seven freed blocks of each small size for the next call, and doesn't overwrite those.
void wipeKeptBlocks()
{
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

[[gnu::noinline]] void wipeStack()
{
    std::array<char, 128 * 1024> below; // where the calls before have been
    explicit_bzero(below.data(), below.size());
}

} // namespace

void wipe(CString& secret)
{
    secret.resize(secret.capacity()); // never a new allocation
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

MemoryWipe::MemoryWipe()
{
    mallopt(M_PERTURB, 0xff);
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
