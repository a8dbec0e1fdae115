// Preloaded into a program: counts its allocations and fails one of them. FAILING_ALLOCATION is its number, counted
// from 1. Without it the count is written to the file ALLOCATION_COUNT at exit. Allocations before `counter` is
// constructed, or after it is destroyed, don't count. The real allocator is called by glibc's internal names, because
// dlsym() allocates.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

std::atomic<unsigned long> count = 0;
unsigned long failing = 0;
bool isOn = false;

struct Counter
{
    Counter()
    {
        if (const char* number = std::getenv("FAILING_ALLOCATION"))
            failing = std::strtoul(number, nullptr, 10);
        isOn = true;
    }
    ~Counter()
    {
        isOn = false;
        const char* const name = std::getenv("ALLOCATION_COUNT");
        if (std::FILE* file = name ? std::fopen(name, "w") : nullptr) {
            std::fprintf(file, "%lu", count.load());
            std::fclose(file);
        }
    }
} counter;

bool failsNow()
{
    if (!isOn || ++count != failing)
        return false;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return failsNow() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size)
{
    return failsNow() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* old, std::size_t size)
{
    return failsNow() ? nullptr : __libc_realloc(old, size);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return failsNow() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return failsNow() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size)
{
    void* const memory = failsNow() ? nullptr : __libc_memalign(alignment, size);
    if (memory)
        *out = memory;
    return memory ? 0 : ENOMEM;
}

// Arenas map large blocks.
void* mmap(void* address, std::size_t size, int protection, int flags, int file, off_t offset)
{
    if (failsNow())
        return reinterpret_cast<void*>(-1);
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, file, offset));
}
}
