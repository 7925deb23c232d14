#include "platform/memory.h"

namespace vorn {

// Here no thread has a heap of its own.
void MemoryThreadReady() {}

}  // namespace vorn
