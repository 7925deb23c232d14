#include "host/memory.h"

#include <malloc.h>

namespace {

/// Blocks of this size and more have a mapping of their own. It also bounds the free end of each thread's
/// heap.
constexpr int LargeBytes = 1 << 20;

}  // namespace

void MemorySetUp() {
    // Both in advance: the C library else takes the first large block as a sign to keep room for more.
    mallopt(M_MMAP_THRESHOLD, LargeBytes);
    mallopt(M_TRIM_THRESHOLD, LargeBytes);
}

void HeapTrim() {
    malloc_trim(0);
}
