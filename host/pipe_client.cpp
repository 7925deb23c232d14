#include "host/pipe_client.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace {

constexpr int WaitSeconds = 600;

/// A connection to a pipe, closed on every path.
class Connection {
  public:
    explicit Connection(const std::string& name) : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path + 1, name.data(), name.size());
        Limit(SO_SNDTIMEO, {.tv_sec = 1, .tv_usec = 0});
        open_ = connect(socket_, reinterpret_cast<const sockaddr*>(&address),
                        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size())) == 0;
        const timeval wait{.tv_sec = WaitSeconds, .tv_usec = 0};
        Limit(SO_SNDTIMEO, wait);
        Limit(SO_RCVTIMEO, wait);
    }
    ~Connection() {
        if (socket_ >= 0) close(socket_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool Open() const { return open_; }

    /// Who holds the pipe.
    ucred Holder() const {
        ucred holder{};
        holder.uid = static_cast<uid_t>(-1);
        socklen_t length = sizeof holder;
        getsockopt(socket_, SOL_SOCKET, SO_PEERCRED, &holder, &length);
        return holder;
    }
    bool HolderTrusted() const { return Holder().uid == geteuid() || Holder().uid == 0; }

    bool Send(const std::string& text) const {
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t sent = send(socket_, text.data() + done, text.size() - done, MSG_NOSIGNAL);
            if (sent > 0) done += static_cast<std::size_t>(sent);
            if (sent < 0 && errno != EINTR) return false;
        }
        return shutdown(socket_, SHUT_WR) == 0;
    }

    /// Reads to the end; false when the other side went silent or broke off.
    bool Receive(std::string& text) const {
        char bytes[65536];
        for (;;) {
            const ssize_t received = recv(socket_, bytes, sizeof bytes, 0);
            if (received == 0) return true;
            if (received > 0) text.append(bytes, static_cast<std::size_t>(received));
            if (received < 0 && errno != EINTR) return false;
        }
    }

  private:
    void Limit(int option, timeval wait) const {
        setsockopt(socket_, SOL_SOCKET, option, &wait, sizeof wait);
    }

    int socket_;
    bool open_ = false;
};

}  // namespace

std::string PipeNameOf(int row) {
    return "VornServerPipe" + std::to_string(row);
}

int PipeRowFind(bool ofThisUser) {
    for (int row = 0; row < PipeRows; ++row) {
        const Connection connection(PipeNameOf(row));
        if (!connection.Open()) continue;
        if (ofThisUser ? connection.HolderTrusted() : connection.Holder().pid == getpid()) return row;
    }
    return -1;
}

bool PipeAsk(int row, const std::string& request, std::string& reply, std::string& fault) {
    const std::string name = PipeNameOf(row);
    const Connection connection(name);
    if (!connection.Open()) {
        fault = "no server holds the pipe " + name;
        return false;
    }
    if (!connection.HolderTrusted()) {
        fault = "the pipe " + name + " is another user's";
        return false;
    }
    reply.clear();
    if (!connection.Send(request) || !connection.Receive(reply) || reply.empty()) {
        fault = "the server of the pipe " + name + " gave no answer";
        return false;
    }
    if (reply == "none") reply.clear();
    return true;
}
