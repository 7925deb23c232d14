// Where this process's service answers.

#pragma once

#include <atomic>

namespace vorn {

/// The port on which `HttpServerThread` listens; 0 while it has none.
inline std::atomic<int> HttpPort{0};

/// The row of the pipe that `PipeServerThread` serves; -1 while it has none.
inline std::atomic<int> PipeSlot{-1};

}  // namespace vorn
