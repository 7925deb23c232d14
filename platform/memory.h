// Memory that the process no longer uses.

#pragma once

#include <cstddef>

namespace vorn {

/// Gives memory that was freed back to the system, where the C library would keep it for the next request.
/// `usedBytes` is about what a request took: nothing happens below 1 MiB, so that small ones cost nothing.
/// Called when the request's texts are gone.
void MemoryGiveBack(std::size_t usedBytes);

}  // namespace vorn
