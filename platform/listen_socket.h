// The socket that an HTTP server listens on.

#pragma once

#include <cstdint>

namespace vorn {

/// Readies a socket that is not yet bound: a second bind of its port fails while it listens, a restarted
/// service gets its port back at once, and replies go out without delay on the connections that it accepts.
void ListenSocketOptions(std::intptr_t socket);

/// Lets more connections wait on a socket that listens already; the HTTP library lets five.
void ListenLonger(std::intptr_t socket);

}  // namespace vorn
