#include "platform/stream_socket.h"

#include <winsock2.h>

#include <algorithm>
#include <climits>

namespace vorn {

namespace {

bool PollFor(std::intptr_t socket, short events, int milliseconds) {
    WSAPOLLFD waited{.fd = static_cast<SOCKET>(socket), .events = events, .revents = 0};
    return WSAPoll(&waited, 1, milliseconds) > 0;
}

/// From here on no call waits on the socket but `PollFor`.
void WaitNever(SOCKET socket) {
    u_long on = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &on);
}

int Bounded(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, INT_MAX));
}

}  // namespace

bool SocketAwait(std::intptr_t socket, int milliseconds) {
    return PollFor(socket, POLLRDNORM, milliseconds);
}

std::ptrdiff_t SocketRead(std::intptr_t socket, char* bytes, std::size_t size) {
    return recv(static_cast<SOCKET>(socket), bytes, Bounded(size), 0);
}

std::ptrdiff_t SocketWrite(std::intptr_t socket, const char* bytes, std::size_t size, int milliseconds) {
    // The system keeps a copy of all that one call is given.
    constexpr int PieceBytes = 65536;
    const auto connection = static_cast<SOCKET>(socket);
    WaitNever(connection);
    for (;;) {
        const int sent = send(connection, bytes, std::min(Bounded(size), PieceBytes), 0);
        if (sent >= 0 || WSAGetLastError() != WSAEWOULDBLOCK) return sent;
        if (!PollFor(socket, POLLWRNORM, milliseconds)) return -1;
    }
}

void SocketEnd(std::intptr_t socket) {
    const auto connection = static_cast<SOCKET>(socket);
    shutdown(connection, SD_SEND);
    WaitNever(connection);
    char rest[4096];
    while (recv(connection, rest, sizeof rest, 0) > 0) continue;
    closesocket(connection);
}

}  // namespace vorn
