#include "platform/listen_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace vorn {

void ListenSocketOptions(std::intptr_t socket) {
    const int on = 1;
    // Not SO_REUSEPORT: with it two servers of one user would share a port.
    setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    // Accepted sockets inherit it. Without it a kept-alive connection waits 40 ms for each reply.
    setsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void ListenLonger(std::intptr_t socket) {
    listen(static_cast<int>(socket), SOMAXCONN);
}

}  // namespace vorn
