// Memory that the process no longer uses.

#pragma once

#include <cstddef>

namespace vorn {

/// Blocks of this size and more are large.
inline constexpr std::size_t LargeBytes = std::size_t{1} << 20U;

/// Tells the C library once that blocks of `LargeBytes` go back to the system when they are freed. It would
/// else take the first large one as a sign to keep room for more.
void MemoryLargeSeparate();

/// Takes what the C library gives each thread once for its small blocks. A thread that calls this at its
/// start answers small requests also while others have used up all memory.
void MemoryThreadReady();

/// Gives what was freed in smaller pieces back to the system, where the C library would keep it for the next
/// request. `usedBytes` is about what a request and its reply had: from `LargeBytes` on it is done at once,
/// else when there is cause for it. Called when the request's texts are gone. Any thread.
void MemoryGiveBack(std::size_t usedBytes);

}  // namespace vorn
