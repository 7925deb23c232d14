#include "platform/stream_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace vorn {

namespace {

bool PollFor(std::intptr_t socket, short events, int milliseconds) {
    pollfd waited{.fd = static_cast<int>(socket), .events = events, .revents = 0};
    int ready = -1;
    do {
        ready = poll(&waited, 1, milliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

}  // namespace

bool SocketAwait(std::intptr_t socket, int milliseconds) {
    return PollFor(socket, POLLIN, milliseconds);
}

std::ptrdiff_t SocketRead(std::intptr_t socket, char* bytes, std::size_t size) {
    return recv(static_cast<int>(socket), bytes, size, 0);
}

std::ptrdiff_t SocketWrite(std::intptr_t socket, const char* bytes, std::size_t size, int milliseconds) {
    for (;;) {
        const ssize_t sent = send(static_cast<int>(socket), bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0 || (errno != EAGAIN && errno != EINTR)) return sent;
        if (errno == EAGAIN && !PollFor(socket, POLLOUT, milliseconds)) return -1;
    }
}

void SocketEnd(std::intptr_t socket) {
    const int connection = static_cast<int>(socket);
    shutdown(connection, SHUT_WR);
    char rest[4096];
    while (recv(connection, rest, sizeof rest, MSG_DONTWAIT) > 0) continue;
    close(connection);
}

}  // namespace vorn
