#include "host/memory.h"

#include <algorithm>
#include <cstddef>

#include "host/process_figures.h"

namespace {

/// What the process may grow by before its heap is trimmed.
constexpr std::size_t GrowthBytes = std::size_t{2} << 20U;

}  // namespace

void MemoryGiveBack() {
    static std::size_t level = 0;
    const std::size_t resident = ResidentBytes();
    if (resident < level + GrowthBytes) {
        level = std::min(level, resident);
        return;
    }
    HeapTrim();
    level = ResidentBytes();
}
