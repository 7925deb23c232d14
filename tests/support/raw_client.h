// A client that does only what it is told.

#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <string>

class RawClient {
  public:
    /// To the pipe of a name.
    explicit RawClient(const std::string& pipe) : socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(pipe.begin(), pipe.end(), address.sun_path + 1);
        Connect(&address, offsetof(sockaddr_un, sun_path) + 1 + pipe.size(), 20);
    }
    /// To a port of this machine; what it sends is at its end after a second of silence.
    explicit RawClient(int port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        Connect(&address, sizeof address, 1);
    }
    ~RawClient() { close(socket_); }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool Connected() const { return connected_; }
    bool Send(const std::string& text) const {
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t sent = send(socket_, text.data() + done, text.size() - done, MSG_NOSIGNAL);
            if (sent <= 0) return false;
            done += static_cast<std::size_t>(sent);
        }
        return true;
    }
    void EndSending() const { shutdown(socket_, SHUT_WR); }
    /// All that comes until the end; "error" behind it when it does not end well.
    std::string Receive() const {
        std::string text;
        char bytes[65536];
        ssize_t count = 0;
        while ((count = recv(socket_, bytes, sizeof bytes, 0)) > 0) {
            text.append(bytes, static_cast<std::size_t>(count));
        }
        return count == 0 ? text : text + "error";
    }

  private:
    void Connect(const void* address, std::size_t size, int seconds) {
        const timeval wait{.tv_sec = seconds, .tv_usec = 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
        connected_ =
            connect(socket_, static_cast<const sockaddr*>(address), static_cast<socklen_t>(size)) == 0;
    }

    int socket_;
    bool connected_ = false;
};
