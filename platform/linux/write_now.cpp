#include "platform/write_now.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

namespace vorn {

namespace {

/// A stream that is ready takes this much without waiting.
constexpr std::size_t PieceBytes = PIPE_BUF;

bool Ready(int descriptor) {
    pollfd writable{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&writable, 1, 0) > 0;
}

}  // namespace

std::size_t WriteNow(StandardStream stream, std::string_view text) {
    const int descriptor = stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
    std::size_t done = 0;
    // Not by O_NONBLOCK: that would hold for all who share the stream, the shell among them.
    while (done < text.size() && Ready(descriptor)) {
        const std::string_view piece = text.substr(done, PieceBytes);
        const ssize_t count = write(descriptor, piece.data(), piece.size());
        if (count < 0 && errno != EINTR && errno != EAGAIN) return text.size();
        if (count < 0 && errno == EAGAIN) break;
        if (count > 0) done += static_cast<std::size_t>(count);
    }
    return done;
}

}  // namespace vorn
