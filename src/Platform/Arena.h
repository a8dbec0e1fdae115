#pragma once

#include <memory_resource>

/// Memory for an arena that takes it in growing chunks: a large one is mapped with its pages in place, which costs the
/// kernel a fraction of what faulting them in one by one does (mmap(2), MAP_POPULATE). Throws std::bad_alloc.
std::pmr::memory_resource* chunkMemory();
