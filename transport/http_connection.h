// One connection of an HTTP server, as the HTTP library reads and writes it.

#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include "transport/chunk_check.h"
#include "transport/http_head.h"
#include "transport/http_rules.h"
#include "transport/httplib_compat.h"

namespace vorn {

/// Gathers the head of each request and looks at it before the library reads it, gives the library the bytes
/// of that request and no others, and sends a small reply in one piece. Not for several threads.
class HttpConnection : public httplib::Stream {
  public:
    /// The socket and the rules stay the caller's.
    HttpConnection(socket_t socket, const HttpRules& rules);

    /// Waits for the next request and gathers its head. False when the connection is at its end: none came,
    /// or one came that was refused, and its client has its answer.
    bool TakeHead();
    /// Sends what of the reply was kept back; false when it could not be sent.
    bool Flush();
    /// The request was read whole, so that what follows is another one.
    bool RequestTaken() const { return headEnd_ == 0 && BodyTaken(); }
    const HttpAddresses& Ends() const { return ends_; }

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_; }

  private:
    using Clock = std::chrono::steady_clock;

    bool BodyTaken() const { return chunked_ ? chunks_.Done() : bodyLeft_ == 0; }
    int GatherHead();
    ssize_t Fill(int milliseconds);
    void LimitTime(int milliseconds);
    int WaitMilliseconds() const;
    std::size_t OfBody(const char* bytes, std::size_t size);
    void Refuse(int status);

    socket_t socket_;
    int readMilliseconds_ = 0;  ///< that the socket was last given for a read
    const HttpRules& rules_;
    HttpAddresses ends_;
    std::array<char, HeadBytesAtMost> buffer_{};
    std::size_t begin_ = 0;  ///< of what is in the buffer and was not yet read
    std::size_t end_ = 0;
    std::size_t headEnd_ = 0;     ///< where in the buffer the head ends; 0 when it has been read
    std::size_t behindHead_ = 0;  ///< where what follows it begins
    std::array<char, 16384> reply_{};
    std::size_t replyBytes_ = 0;  ///< of the reply, not yet sent
    bool timed_ = false;          ///< what comes now must have come by `until_`
    Clock::time_point until_{};
    bool chunked_ = false;
    std::uint64_t bodyLeft_ = 0;  ///< of a body that is not chunked
    ChunkCheck chunks_{};
};

}  // namespace vorn
