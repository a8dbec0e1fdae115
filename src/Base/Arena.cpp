#include "Base/Arena.h"

#include "Base/LargePages.h"

namespace {

// Chunks come from the heap, large ones with large pages. Mapping each chunk with its pages in place was tried and is
// slower, because the system clears the pages of a new mapping, while the heap reuses its own. The alignment is
// ignored, because malloc() aligns for every type that isn't over-aligned.
class ChunkMemory : public std::pmr::memory_resource
{
    void* do_allocate(std::size_t bytes, std::size_t) override { return allocateLarge(bytes); }
    void do_deallocate(void* chunk, std::size_t, std::size_t) override { std::free(chunk); }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }
};

} // namespace

Arena::Arena() :
    std::pmr::monotonic_buffer_resource([] {
        // One for all arenas and threads, because it has no state. Local, so that it exists before any arena of static
        // storage.
        static ChunkMemory memory;
        return &memory;
    }())
{}
