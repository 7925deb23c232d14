#include "platform/stream_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
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

/// Asks the system for one end of a connection by `ask`.
template <class Ask>
void EndpointRead(int socket, Ask ask, SocketEndpoint end) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
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

}  // namespace

bool SocketAwait(std::intptr_t socket, int milliseconds) {
    return PollFor(socket, POLLIN, milliseconds);
}

std::ptrdiff_t SocketRead(std::intptr_t socket, char* bytes, std::size_t size) {
    return recv(static_cast<int>(socket), bytes, size, 0);
}

void SocketReadTimeSet(std::intptr_t socket, int milliseconds) {
    constexpr suseconds_t MicrosecondsEach = 1000;
    const timeval time{.tv_sec = milliseconds / 1000, .tv_usec = milliseconds % 1000 * MicrosecondsEach};
    setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

std::ptrdiff_t SocketReadAwait(std::intptr_t socket, char* bytes, std::size_t size) {
    std::ptrdiff_t read = -1;
    do {
        read = SocketRead(socket, bytes, size);
    } while (read < 0 && errno == EINTR);
    return read;
}

std::ptrdiff_t SocketWrite(std::intptr_t socket, const char* bytes, std::size_t size, int milliseconds) {
    for (;;) {
        const ssize_t sent = send(static_cast<int>(socket), bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0 || (errno != EAGAIN && errno != EINTR)) return sent;
        if (errno == EAGAIN && !PollFor(socket, POLLOUT, milliseconds)) return -1;
    }
}

void SocketEndSending(std::intptr_t socket) {
    shutdown(static_cast<int>(socket), SHUT_WR);
}

void SocketClose(std::intptr_t socket) {
    close(static_cast<int>(socket));
}

void SocketEnds(std::intptr_t socket, SocketEndpoint remote, SocketEndpoint local) {
    EndpointRead(static_cast<int>(socket), getpeername, remote);
    EndpointRead(static_cast<int>(socket), getsockname, local);
}

}  // namespace vorn
