#include "Base/Arena.h"

#include <new>
#include <sys/mman.h>

namespace {

// Smaller chunks come from the heap, which has them at hand. Each is half as large again as the one before: all of a
// chunk is put into memory at once, which is quicker than page by page, while what stays unused of it is little.
constexpr std::size_t kMapped = 1 << 18;
constexpr std::size_t kPopulated = 1 << 22;

class ChunkMemory : public std::pmr::memory_resource
{
    void* do_allocate(std::size_t bytes, std::size_t alignment) override
    {
        if (bytes < kMapped)
            return std::pmr::new_delete_resource()->allocate(bytes, alignment);
        const int populate = bytes < kPopulated ? MAP_POPULATE : 0;
        void* chunk = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | populate, -1, 0);
        if (chunk == MAP_FAILED)
            throw std::bad_alloc();
        return chunk;
    }

    void do_deallocate(void* chunk, std::size_t bytes, std::size_t alignment) override
    {
        if (bytes < kMapped)
            std::pmr::new_delete_resource()->deallocate(chunk, bytes, alignment);
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
