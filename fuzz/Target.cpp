// The entry point of every target, called by libFuzzer or Replay.cpp.
#include "Target.h"

#include <cstdint>

// Larger inputs show the same faults as small ones, but take longer.
constexpr std::size_t kMaxInput = 16 << 10;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size <= kMaxInput)
        fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}

// With the defaults, half of the time is spent on the stack of each allocation and on the quarantine of freed memory.
extern "C" const char* __asan_default_options()
{
    return "malloc_context_size=3:quarantine_size_mb=16:max_malloc_fill_size=64";
}
