#include "platform/memory.h"

#include <malloc.h>

namespace vorn {

void MemoryLargeSeparate() {
    mallopt(M_MMAP_THRESHOLD, static_cast<int>(LargeBytes));
    // The end of each thread's heap, which the call below does not reach.
    mallopt(M_TRIM_THRESHOLD, static_cast<int>(LargeBytes));
}

void MemoryGiveBack(std::size_t usedBytes) {
    if (usedBytes >= LargeBytes) malloc_trim(0);
}

}  // namespace vorn
