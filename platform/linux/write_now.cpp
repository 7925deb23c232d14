#include "platform/write_now.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>

namespace vorn {

namespace {

/// A pipe that is ready takes this much without waiting.
constexpr std::size_t PieceBytes = PIPE_BUF;

bool Ready(int descriptor) {
    pollfd writable{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&writable, 1, 0) > 0;
}

/// A stream to write to. A terminal that is ready may take less than a piece, and wait then; it is opened
/// once more, not to wait. That cannot be set for the stream that was given: it would hold for all who share
/// it, the shell among them.
class Target {
  public:
    explicit Target(int stream) : stream_(stream) {
        if (isatty(stream) == 0) return;
        const std::string path = "/proc/self/fd/" + std::to_string(stream);
        own_ = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    }
    ~Target() {
        if (own_ >= 0) close(own_);
    }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    int Get() const { return own_ >= 0 ? own_ : stream_; }

  private:
    int stream_;
    int own_ = -1;
};

}  // namespace

std::size_t WriteNow(StandardStream stream, std::string_view text) {
    if (text.empty()) return 0;
    const Target target(stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO);
    std::size_t done = 0;
    while (done < text.size() && Ready(target.Get())) {
        const std::string_view piece = text.substr(done, PieceBytes);
        const ssize_t count = write(target.Get(), piece.data(), piece.size());
        if (count < 0 && errno != EINTR && errno != EAGAIN) return text.size();
        if (count < 0 && errno == EAGAIN) break;
        if (count > 0) done += static_cast<std::size_t>(count);
    }
    return done;
}

}  // namespace vorn
