#include "platform/memory.h"

#include <malloc.h>

namespace vorn {

// This system's heap keeps no large blocks.
void MemoryLargeSeparate() {}

// Nor has a thread a heap of its own.
void MemoryThreadReady() {}

void MemoryGiveBack(std::size_t usedBytes) {
    if (usedBytes >= LargeBytes) _heapmin();
}

}  // namespace vorn
