#include "platform/memory.h"

#include <malloc.h>

namespace vorn {

void MemoryGiveBack(std::size_t usedBytes) {
    constexpr std::size_t WorthIt = std::size_t{1} << 20U;
    if (usedBytes >= WorthIt) malloc_trim(0);
}

}  // namespace vorn
