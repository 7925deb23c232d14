#include "platform/listen_socket.h"

#include <winsock2.h>

namespace vorn {

void ListenSocketOptions(std::intptr_t socket) {
    const BOOL on = TRUE;
    const auto* const value = reinterpret_cast<const char*>(&on);
    // A port of a service that has ended is free at once on this system; the option keeps others off it.
    setsockopt(static_cast<SOCKET>(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE, value, sizeof on);
    // Accepted sockets inherit it.
    setsockopt(static_cast<SOCKET>(socket), IPPROTO_TCP, TCP_NODELAY, value, sizeof on);
}

void ListenLonger(std::intptr_t socket) {
    listen(static_cast<SOCKET>(socket), SOMAXCONN);
}

}  // namespace vorn
