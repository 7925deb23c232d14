#include "host/memory.h"

#include <malloc.h>

#include <cstddef>

#include "host/process_figures.h"

namespace {

/// Bytes by which the process grows or shrinks before its heap is tidied.
constexpr std::size_t ChangeBytes = std::size_t{2} << 20U;

}  // namespace

// This system's heap keeps no large blocks.
void MemorySetUp() {}

void MemoryGiveBack() {
    static std::size_t level = 0;
    const std::size_t resident = ResidentBytes();
    if (resident < level + ChangeBytes && level < resident + ChangeBytes) return;
    _heapmin();
    level = ResidentBytes();
}
