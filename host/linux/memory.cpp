#include "host/memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>

namespace {

/// Blocks of this size and more have a mapping of their own. It also bounds the free end of each thread's
/// heap.
constexpr int LargeBytes = 1 << 20;

/// Bytes that may be freed before they are given back.
constexpr std::size_t FreedBytes = std::size_t{2} << 20U;

/// Bytes in the heaps of all threads that are free, given back or not.
std::size_t FreeBytes() {
    return mallinfo2().fordblks;
}

}  // namespace

void MemorySetUp() {
    // Both in advance: the C library else takes the first large block as a sign to keep room for more.
    mallopt(M_MMAP_THRESHOLD, LargeBytes);
    mallopt(M_TRIM_THRESHOLD, LargeBytes);
}

void MemoryGiveBack() {
    static std::size_t given = 0;
    given = std::min(given, FreeBytes());  // what was given back is in use again
    if (FreeBytes() < given + FreedBytes) return;
    malloc_trim(0);
    given = FreeBytes();
}
