// The three locks of the service. They are constant-initialised and never destroyed, so every entry may be
// called at any time, the first one included.
//
// `RtnGetLock` and `RtnSetLock` nest inside `DispatchLock`, never the reverse.

#pragma once

#include <mutex>

namespace vorn {

/// Held around each dispatch: requests of all front ends run one at a time, the waits of their commands
/// included.
inline std::mutex DispatchLock;
/// Each guards one side of the exchange log.
inline std::mutex RtnGetLock;
inline std::mutex RtnSetLock;

}  // namespace vorn
