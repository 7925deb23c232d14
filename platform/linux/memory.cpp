#include "platform/memory.h"

#include <cstdlib>

namespace vorn {

void MemoryThreadReady() {
    void* volatile block = std::malloc(1);  // not to be optimised away
    std::free(block);
}

}  // namespace vorn
