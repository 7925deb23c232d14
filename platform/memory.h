// Memory that the process no longer uses.

#pragma once

#include <cstddef>

namespace vorn {

/// What takes less costs nothing here.
inline constexpr std::size_t LargeBytes = std::size_t{1} << 20U;

/// Tells the C library once that blocks of `LargeBytes` go back to the system when they are freed. It would
/// else take the first large one as a sign to keep room for more.
void MemoryLargeSeparate();

/// Gives what was freed in smaller pieces back to the system, where the C library would keep it for the next
/// request. `usedBytes` is about what a request took: nothing happens below `LargeBytes`. Called when the
/// request's texts are gone.
void MemoryGiveBack(std::size_t usedBytes);

}  // namespace vorn
