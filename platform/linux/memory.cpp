#include "platform/memory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>

namespace vorn {

namespace {

/// What requests may bring before what they left behind is given back. In memory a request can take twenty
/// times its bytes; giving back takes as long as some thousands of them.
constexpr std::size_t BroughtBytes = std::size_t{256} << 10U;

std::atomic<std::size_t> brought{0};

}  // namespace

void MemoryLargeSeparate() {
    mallopt(M_MMAP_THRESHOLD, static_cast<int>(LargeBytes));
    // The end of each thread's heap, which the call below does not reach.
    mallopt(M_TRIM_THRESHOLD, static_cast<int>(LargeBytes));
}

void MemoryThreadReady() {
    void* volatile block = std::malloc(1);  // not to be optimised away
    std::free(block);
}

void MemoryGiveBack(std::size_t usedBytes) {
    if (brought.fetch_add(usedBytes) + usedBytes < BroughtBytes) return;
    brought = 0;
    malloc_trim(0);
}

}  // namespace vorn
