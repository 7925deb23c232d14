#include "platform/named_pipe.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vorn {

struct NamedPipe {
    int listener = -1;      ///< a server's end only
    int connection = -1;    ///< -1 between two clients
    std::string request{};  ///< a server's end: the client's whole request
    std::size_t taken = 0;  ///< bytes that were read of the request, or at a client's end of the reply
};

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds Silence{20};
/// A request of this size came in several pieces.
constexpr std::size_t PiecewiseBytes = 32768;
constexpr milliseconds SilenceBetweenPieces{250};
/// A reply may have to wait for clients in front, each of which may hold the pipe up.
constexpr int AnswerHolds = 5;
constexpr milliseconds QueueWait{100};
/// Rests between two tries of what the system refuses for the moment.
constexpr milliseconds RefusedRest{100};

std::atomic<int> holdMilliseconds{60000};

milliseconds Hold() {
    return milliseconds(holdMilliseconds.load());
}

/// Waits until `descriptor` shows one of `events`, its connection is gone, or the time is up (false).
bool Await(int descriptor, short events, milliseconds atMost) {
    const auto end = Clock::now() + atMost;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        pollfd waited{.fd = descriptor, .events = events, .revents = 0};
        const int ready = poll(&waited, 1, static_cast<int>(std::max<milliseconds::rep>(left.count(), 0)));
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

/// The address of an abstract name; none for a name that does not fit one.
struct Address {
    sockaddr_un address{};
    socklen_t length = 0;
};

std::optional<Address> AddressOf(std::string_view name) {
    Address result;
    if (name.empty() || name.size() >= sizeof result.address.sun_path) return std::nullopt;
    result.address.sun_family = AF_UNIX;
    std::memcpy(result.address.sun_path + 1, name.data(), name.size());
    result.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    return result;
}

/// True for a process of this user or of root at the other side.
bool OtherSideTrusted(int connection) {
    ucred other{};
    socklen_t length = sizeof other;
    if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &other, &length) != 0) return false;
    return other.uid == geteuid() || other.uid == 0;
}

/// Unread bytes at this side would show as an error at the other one, behind the reply: they are taken out.
void EndConnection(int& connection) {
    if (connection < 0) return;
    shutdown(connection, SHUT_RDWR);
    char rest[4096];
    while (recv(connection, rest, sizeof rest, MSG_DONTWAIT) > 0) continue;
    close(connection);
    connection = -1;
}

/// Receives what is there, up to `size` bytes, and waits for it until `end`. 0 at the end of what comes,
/// negative when nothing came in time.
ssize_t Receive(int connection, char* bytes, std::size_t size, Clock::time_point end) {
    for (;;) {
        const ssize_t received = recv(connection, bytes, size, MSG_DONTWAIT);
        if (received >= 0) return received;
        if (errno == EINTR) continue;
        if (errno != EAGAIN) return 0;
        if (!Await(connection, POLLIN, std::chrono::ceil<milliseconds>(end - Clock::now()))) return -1;
    }
}

/// Gathers a client's request until it is whole. False for a client that left without one, or that is to be
/// let go.
bool GatherRequest(int connection, std::string& request) {
    request.clear();
    const auto end = Clock::now() + Hold();
    std::vector<char> bytes(65536);
    for (;;) {
        const milliseconds silence = request.size() < PiecewiseBytes ? Silence : SilenceBetweenPieces;
        const auto quietEnd = request.empty() ? end : std::min(end, Clock::now() + silence);
        const ssize_t received = Receive(connection, bytes.data(), bytes.size(), quietEnd);
        const bool whole = received == 0 || (received < 0 && quietEnd < end);
        if (received <= 0) return whole && !request.empty();
        request.append(bytes.data(), static_cast<std::size_t>(received));
        if (request.size() > PipeTextBytesAtMost || Clock::now() >= end) return false;
    }
}

/// What no longer is needed of a large request is given back.
void ForgetRequest(NamedPipe& pipe) {
    std::string().swap(pipe.request);  // an assignment would keep the room
    pipe.taken = 0;
}

}  // namespace

void PipeHoldSet(int milliseconds) {
    holdMilliseconds = milliseconds;
}

NamedPipe* CreateNamedPipeW(std::string_view name) {
    const auto address = AddressOf(name);
    if (!address) return nullptr;
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) return nullptr;
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address->address), address->length) != 0 ||
        listen(listener, SOMAXCONN) != 0) {
        close(listener);
        return nullptr;
    }
    return new NamedPipe{.listener = listener};
}

bool ConnectNamedPipe(NamedPipe* pipe) {
    DisconnectNamedPipe(pipe);
    pipe->connection = accept4(pipe->listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (pipe->connection < 0) {
        // Out of descriptors or memory: the client stays in the queue, and asking again at once would spin.
        if (errno != EINTR && errno != ECONNABORTED) poll(nullptr, 0, static_cast<int>(RefusedRest.count()));
        return false;
    }
    if (OtherSideTrusted(pipe->connection) && GatherRequest(pipe->connection, pipe->request)) return true;
    DisconnectNamedPipe(pipe);
    return false;
}

bool PeekNamedPipe(NamedPipe* pipe, std::size_t& waiting) {
    waiting = pipe->request.size() - pipe->taken;
    return waiting > 0;
}

std::size_t ReadFile(NamedPipe* pipe, char* bytes, std::size_t size) {
    if (pipe->listener >= 0) {
        const std::size_t read = pipe->request.copy(bytes, size, pipe->taken);
        pipe->taken += read;
        return read;
    }
    if (pipe->taken == 0) shutdown(pipe->connection, SHUT_WR);
    if (pipe->taken + size > PipeTextBytesAtMost) return 0;
    const auto end = Clock::now() + AnswerHolds * Hold();
    std::size_t read = 0;
    while (read < size) {
        const ssize_t received = Receive(pipe->connection, bytes + read, size - read, end);
        if (received <= 0) break;
        read += static_cast<std::size_t>(received);
    }
    pipe->taken += read;
    return read;
}

bool WriteFile(NamedPipe* pipe, std::string_view text) {
    while (!text.empty()) {
        const ssize_t sent = send(pipe->connection, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            text.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN ? !Await(pipe->connection, POLLOUT, Hold()) : errno != EINTR) {
            shutdown(pipe->connection, SHUT_RDWR);
            return false;
        }
    }
    return true;
}

void FlushFileBuffers(NamedPipe* pipe) {
    // A client that has read its reply sees the end and closes, which ends the wait at once. For one that
    // stays, the unread bytes are looked at from time to time.
    shutdown(pipe->connection, SHUT_WR);
    const auto end = Clock::now() + Hold();
    for (milliseconds step{1}; Clock::now() < end; step = std::min(step * 2, Silence)) {
        int unread = 0;
        if (ioctl(pipe->connection, SIOCOUTQ, &unread) != 0 || unread == 0) return;
        if (Await(pipe->connection, 0, step)) return;
    }
}

void DisconnectNamedPipe(NamedPipe* pipe) {
    EndConnection(pipe->connection);
    ForgetRequest(*pipe);
}

void WaitNamedPipeW(std::string_view /*name*/) {}

NamedPipe* CreateFileW(std::string_view name) {
    const auto address = AddressOf(name);
    if (!address) return nullptr;
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0) return nullptr;
    const timeval wait{.tv_sec = 0, .tv_usec = std::chrono::microseconds(QueueWait).count()};
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address->address), address->length) != 0) {
        close(connection);
        return nullptr;
    }
    // Somebody else's pipe is not talked to, and trying again would not help: what is written fails.
    if (!OtherSideTrusted(connection)) shutdown(connection, SHUT_RDWR);
    return new NamedPipe{.connection = connection};
}

void CloseHandle(NamedPipe* pipe) {
    if (pipe == nullptr) return;
    EndConnection(pipe->connection);
    if (pipe->listener >= 0) close(pipe->listener);
    delete pipe;
}

}  // namespace vorn
