// Memory that a thread needs before it can serve.

#pragma once

namespace vorn {

/// Takes what the C library gives each thread once for its small blocks. A thread that calls this at its
/// start answers small requests also while others have used up all memory.
void MemoryThreadReady();

}  // namespace vorn
