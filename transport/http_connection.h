// One connection of an HTTP server, as the HTTP library reads and writes it.

#pragma once

#include <httplib.h>

#include <array>
#include <cstddef>

namespace vorn {

/// Hides each request's `Range` header from the library, which would refuse a request for a malformed one and
/// cut the reply by a good one; nothing here deals in parts of a reply. Keeps what came behind a
/// request for the next one.
class HttpConnection : public httplib::Stream {
  public:
    /// How long one read or write may wait.
    HttpConnection(socket_t socket, int readMilliseconds, int writeMilliseconds)
        : socket_(socket), readMilliseconds_(readMilliseconds), writeMilliseconds_(writeMilliseconds) {}

    /// Waits for the next request; false when none began in that time.
    bool AwaitRequest(int milliseconds);
    /// The library has read the head of the request: what comes now is passed on as it is.
    void HeadEnded() { inHead_ = false; }

    bool is_readable() const override;
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    // The library asks for addresses to tell the handlers, which read none.
    void get_remote_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
    void get_local_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
    socket_t socket() const override { return socket_; }

  private:
    ssize_t Fill();
    void HideRange(char& byte);

    socket_t socket_;
    int readMilliseconds_;
    int writeMilliseconds_;
    std::array<char, 16384> buffer_{};
    std::size_t begin_ = 0;  ///< of what is in the buffer and was not yet read
    std::size_t end_ = 0;
    bool inHead_ = false;
    /// Bytes of the line that are those of the header's name; its length in what follows and in other lines.
    std::size_t matched_ = 0;
};

}  // namespace vorn
