#include "Base/Arena.h"

#include "Base/LargePages.h"

namespace {

class ChunkMemory : public std::pmr::memory_resource
{
    void* do_allocate(std::size_t bytes, std::size_t) override { return allocateLarge(bytes); }
    void do_deallocate(void* chunk, std::size_t, std::size_t) override { std::free(chunk); }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }
};

} // namespace

Arena::Arena() :
    std::pmr::monotonic_buffer_resource([] {
        static ChunkMemory memory;
        return &memory;
    }())
{}
