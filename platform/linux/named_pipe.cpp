// A pipe NAME is the abstract Unix socket NAME: exclusive, machine-wide, and gone with its process. The
// kernel may bring one write of a client in pieces, so that a socket that runs dry says nothing. A request is
// therefore gathered here until it is whole, and the service then reads it as it would out of a pipe: it has
// ended when its writer has ended the writing or was silent for a while.

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
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vorn {

using Clock = std::chrono::steady_clock;

struct NamedPipe {
    int listener = -1;          ///< a server's end only
    int connection = -1;        ///< -1 between two clients
    Clock::duration left{};     ///< what the exchange may still wait for the other side
    std::string request{};      ///< a server's end: the client's whole request
    std::size_t taken = 0;      ///< bytes that were read of the request
    bool requestEnded = false;  ///< a client's end: the reply is being read
};

namespace {

using std::chrono::milliseconds;

constexpr milliseconds Silence{20};
/// A request of this size came in several pieces, and its writer may be waiting for a processor.
constexpr std::size_t PiecewiseBytes = 32768;
constexpr milliseconds SilenceBetweenPieces{250};
constexpr int ClientHolds = 10;
/// How long a client waits for a place in the queue.
constexpr milliseconds QueueWait{100};
/// A client at work reads its reply within this time. Then come rests between the looks at what it has not
/// read yet, the first one as long and each further one twice as long.
constexpr std::chrono::microseconds FirstRest{50};
/// Rests between two tries of what the system refuses for the moment.
constexpr milliseconds RefusedRest{100};

std::atomic<int> holdMilliseconds{60000};

milliseconds Hold() {
    return milliseconds(holdMilliseconds.load());
}

/// Waits until the connection shows one of `events` (true), is gone (true), or the time is up (false).
bool PollFor(int connection, short events, Clock::duration atMost) {
    const auto end = Clock::now() + atMost;
    for (;;) {
        const auto left = std::max<Clock::duration>(end - Clock::now(), Clock::duration::zero());
        const auto whole = std::chrono::floor<std::chrono::seconds>(left);
        const timespec wait{.tv_sec = whole.count(),
                            .tv_nsec = std::chrono::nanoseconds(left - whole).count()};
        pollfd waited{.fd = connection, .events = events, .revents = 0};
        const int ready = ppoll(&waited, 1, &wait, nullptr);
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

/// As `PollFor`, no longer than the exchange may still wait, and takes the time off it.
bool Await(NamedPipe& pipe, short events, Clock::duration atMost) {
    const auto start = Clock::now();
    const bool shown = PollFor(pipe.connection, events, std::min(atMost, pipe.left));
    pipe.left -= Clock::now() - start;
    return shown;
}

bool TimeIsUp(const NamedPipe& pipe) {
    return pipe.left <= Clock::duration::zero();
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

/// A connection to the pipe of that address; negative when there is none, or no place in its queue.
int Connected(const Address& address) {
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval wait{.tv_sec = 0, .tv_usec = std::chrono::microseconds(QueueWait).count()};
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address.address), address.length) == 0) {
        return connection;
    }
    if (connection >= 0) close(connection);
    return -1;
}

/// Who stands at the other side.
PipeHolder OtherSide(int connection) {
    ucred other{};
    socklen_t length = sizeof other;
    if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &other, &length) != 0) return PipeHolder::AnotherUser;
    if (other.pid == getpid()) return PipeHolder::ThisProcess;
    return other.uid == geteuid() || other.uid == 0 ? PipeHolder::ThisUser : PipeHolder::AnotherUser;
}

bool OtherSideTrusted(int connection) {
    return OtherSide(connection) != PipeHolder::AnotherUser;
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

/// Receives what is there, up to `size` bytes, and waits for it. 0 at the end of what comes; negative on an
/// error, which is `EAGAIN` when nothing came in time.
ssize_t Receive(NamedPipe& pipe, char* bytes, std::size_t size, Clock::duration atMost) {
    for (;;) {
        const ssize_t received = recv(pipe.connection, bytes, size, MSG_DONTWAIT);
        if (received >= 0 || (errno != EINTR && errno != EAGAIN)) return received;
        if (errno == EAGAIN && !Await(pipe, POLLIN, atMost)) {
            errno = EAGAIN;
            return -1;
        }
    }
}

/// Gathers a client's request until it is whole. False for a client that left without one, or that is to be
/// let go.
bool GatherRequest(NamedPipe& pipe) {
    std::vector<char> bytes(65536);
    while (pipe.request.size() <= PipeRequestBytesAtMost && !TimeIsUp(pipe)) {
        const milliseconds silence = pipe.request.size() < PiecewiseBytes ? Silence : SilenceBetweenPieces;
        const auto atMost = pipe.request.empty() ? pipe.left : Clock::duration(silence);
        const ssize_t received = Receive(pipe, bytes.data(), bytes.size(), atMost);
        if (received < 0 && errno == EAGAIN && TimeIsUp(pipe)) return false;
        if (received <= 0) return !pipe.request.empty();
        pipe.request.append(bytes.data(), static_cast<std::size_t>(received));
    }
    return false;
}

/// What a text of that size adds to the time of its exchange.
Clock::duration ReplyTime(std::size_t bytes) {
    const double holds = static_cast<double>(bytes) / PipeReplyBytesPerHold;
    return std::chrono::duration_cast<Clock::duration>(holds * Hold());
}

/// Whether the other side has not read all that was sent to it and is still there.
bool Unread(int connection) {
    int bytes = 0;
    return ioctl(connection, SIOCOUTQ, &bytes) == 0 && bytes > 0;
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
    auto pipe = std::make_unique<NamedPipe>();
    pipe->listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (pipe->listener < 0) return nullptr;
    if (bind(pipe->listener, reinterpret_cast<const sockaddr*>(&address->address), address->length) != 0 ||
        listen(pipe->listener, SOMAXCONN) != 0) {
        close(pipe->listener);
        return nullptr;
    }
    return pipe.release();
}

bool ConnectNamedPipe(NamedPipe* pipe) {
    DisconnectNamedPipe(pipe);
    pipe->connection = accept4(pipe->listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (pipe->connection < 0) {
        // Out of descriptors or memory: the client stays in the queue, and asking again at once would spin.
        if (errno != EINTR && errno != ECONNABORTED) poll(nullptr, 0, static_cast<int>(RefusedRest.count()));
        return false;
    }
    pipe->left = Hold();
    if (OtherSideTrusted(pipe->connection) && GatherRequest(*pipe)) return true;
    DisconnectNamedPipe(pipe);
    return false;
}

bool PeekNamedPipe(NamedPipe* pipe, std::size_t& waiting) {
    waiting = pipe->request.size() - pipe->taken;
    return waiting > 0;
}

bool ReadFile(NamedPipe* pipe, char* bytes, std::size_t size, std::size_t& read) {
    if (pipe->listener >= 0) {
        read = pipe->request.copy(bytes, size, pipe->taken);
        pipe->taken += read;
        return true;
    }
    if (!pipe->requestEnded) shutdown(pipe->connection, SHUT_WR);
    pipe->requestEnded = true;
    for (read = 0; read < size;) {
        const ssize_t received = Receive(*pipe, bytes + read, size - read, pipe->left);
        if (received <= 0) return received == 0;
        read += static_cast<std::size_t>(received);
    }
    pipe->left += ReplyTime(read);
    return true;
}

bool WriteFile(NamedPipe* pipe, std::string_view text) {
    if (pipe->listener >= 0) pipe->left += ReplyTime(text.size());
    while (!text.empty()) {
        const ssize_t sent = send(pipe->connection, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            text.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN ? !Await(*pipe, POLLOUT, pipe->left) : errno != EINTR) {
            shutdown(pipe->connection, SHUT_RDWR);
            return false;
        }
    }
    return true;
}

void FlushFileBuffers(NamedPipe* pipe) {
    // A client that has read its reply sees the end and closes, which ends the wait at once. One that stays,
    // or had ended its writing before, shows no event: the unread bytes are looked at from time to time. They
    // are gone, too, when the client is.
    shutdown(pipe->connection, SHUT_WR);
    bool hungUp = false;
    Clock::duration rest = FirstRest;
    for (const auto start = Clock::now(); !TimeIsUp(*pipe) && Unread(pipe->connection);) {
        if (!hungUp) {
            hungUp = Await(*pipe, 0, rest);
        } else if (Clock::now() - start < FirstRest) {
            std::this_thread::yield();
            continue;
        } else {
            std::this_thread::sleep_for(rest);
            pipe->left -= rest;
        }
        rest = std::min<Clock::duration>(rest * 2, Silence);
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
    auto pipe = std::make_unique<NamedPipe>();
    pipe->left = ClientHolds * Hold();
    pipe->connection = Connected(*address);
    if (pipe->connection < 0) return nullptr;
    // Somebody else's pipe is not talked to, and trying again would not help: what is written fails.
    if (!OtherSideTrusted(pipe->connection)) shutdown(pipe->connection, SHUT_RDWR);
    return pipe.release();
}

void CloseHandle(NamedPipe* pipe) {
    if (pipe == nullptr) return;
    EndConnection(pipe->connection);
    if (pipe->listener >= 0) close(pipe->listener);
    delete pipe;
}

PipeHolder PipeHolderOf(std::string_view name) {
    const auto address = AddressOf(name);
    const int connection = address ? Connected(*address) : -1;
    if (connection < 0) return PipeHolder::Nobody;
    const PipeHolder holder = OtherSide(connection);
    close(connection);
    return holder;
}

}  // namespace vorn
