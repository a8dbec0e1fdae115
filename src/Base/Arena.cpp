#include "Base/Arena.h"

#include "Base/LargePages.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace {

// Smaller chunks come from the heap, where freed ones are reused. Chunks grow by half each: a mapped chunk is populated
// at once, which is faster than page by page, and a small factor wastes little of it. The largest chunks use large
// pages.
constexpr std::size_t kMapped = 1 << 18;

class ChunkMemory : public std::pmr::memory_resource
{
    void* do_allocate(std::size_t bytes, std::size_t alignment) override
    {
        if (bytes < kMapped)
            return std::pmr::new_delete_resource()->allocate(bytes, alignment);
        if (bytes >= kLargeMemory)
            return allocateLarge(bytes);
        const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE;
        void* chunk = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, flags, -1, 0);
        if (chunk == MAP_FAILED)
            throw std::bad_alloc();
        return chunk;
    }

    void do_deallocate(void* chunk, std::size_t bytes, std::size_t alignment) override
    {
        if (bytes < kMapped)
            std::pmr::new_delete_resource()->deallocate(chunk, bytes, alignment);
        else if (bytes >= kLargeMemory)
            std::free(chunk);
        else
            ::munmap(chunk, bytes);
    }

    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }
};

} // namespace

Arena::Arena() :
    std::pmr::monotonic_buffer_resource([] {
        static ChunkMemory memory;
        return &memory;
    }())
{}
