// The options of the socket that the HTTP service listens on.

#pragma once

#include <cstdint>

namespace vorn {

/// Readies a socket that is not yet bound: a second bind of its port fails while it listens, a restarted
/// service gets its port back at once, and replies go out without delay on the connections that it accepts.
void ListenSocketOptions(std::intptr_t socket);

}  // namespace vorn
