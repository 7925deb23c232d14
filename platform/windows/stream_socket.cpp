#include "platform/stream_socket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

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

/// Asks the system for one end of a connection by `ask`.
template <class Ask>
void EndpointRead(SOCKET socket, Ask ask, SocketEndpoint end) {
    sockaddr_storage address{};
    int size = sizeof address;
    if (ask(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return;
    const bool six = address.ss_family == AF_INET6;
    const auto* const ipv4 = reinterpret_cast<const sockaddr_in*>(&address);
    const auto* const ipv6 = reinterpret_cast<const sockaddr_in6*>(&address);
    char text[INET6_ADDRSTRLEN] = {};
    const void* const number = six ? static_cast<const void*>(&ipv6->sin6_addr) : &ipv4->sin_addr;
    if (inet_ntop(address.ss_family, number, text, sizeof text) == nullptr) return;
    end.ip = text;
    end.port = ntohs(six ? ipv6->sin6_port : ipv4->sin_port);
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

void SocketReadTimeSet(std::intptr_t socket, int milliseconds) {
    const auto time = static_cast<DWORD>(milliseconds);
    setsockopt(static_cast<SOCKET>(socket), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&time),
               sizeof time);
}

std::ptrdiff_t SocketReadAwait(std::intptr_t socket, char* bytes, std::size_t size) {
    // Behind a write the connection does not wait by itself.
    DWORD time = 0;
    int timeBytes = sizeof time;
    const bool known = getsockopt(static_cast<SOCKET>(socket), SOL_SOCKET, SO_RCVTIMEO,
                                  reinterpret_cast<char*>(&time), &timeBytes) == 0;
    if (!known || !PollFor(socket, POLLRDNORM, static_cast<int>(time))) return -1;
    return SocketRead(socket, bytes, size);
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

void SocketEndSending(std::intptr_t socket) {
    shutdown(static_cast<SOCKET>(socket), SD_SEND);
}

void SocketClose(std::intptr_t socket) {
    closesocket(static_cast<SOCKET>(socket));
}

void SocketEnds(std::intptr_t socket, SocketEndpoint remote, SocketEndpoint local) {
    EndpointRead(static_cast<SOCKET>(socket), getpeername, remote);
    EndpointRead(static_cast<SOCKET>(socket), getsockname, local);
}

}  // namespace vorn
