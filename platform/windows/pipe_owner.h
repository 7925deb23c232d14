// Whose pipes are used.

#pragma once

namespace vorn {

/// True for a pipe of this process's user, of the system or of its administrators. `pipe` is the handle of a
/// client's end that may read.
bool PipeOwnerTrusted(void* pipe);

}  // namespace vorn
