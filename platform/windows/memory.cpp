#include "platform/memory.h"

#include <malloc.h>

namespace vorn {

// This system's heap keeps no large blocks.
void MemoryLargeSeparate() {}

void MemoryGiveBack(std::size_t usedBytes) {
    if (usedBytes >= LargeBytes) _heapmin();
}

}  // namespace vorn
