#include "transport/http_connection.h"

#include <algorithm>
#include <cstring>

#include "platform/stream_socket.h"

namespace vorn {

namespace {

constexpr int QuietMilliseconds = 5000;  // the library's own, for reads, writes and the next request

/// An answer that the library has no part in.
struct Refusal {
    int status;
    const char* reason;
    const char* text;
};

constexpr Refusal Refusals[] = {
    {400, "Bad Request",
     "this head is no HTTP, leaves its end in doubt, or has a body where none is taken\n"},
    {408, "Request Timeout", "the request took too long to come\n"},
    {415, "Unsupported Media Type", "a request's body is taken as it is, without Content-Encoding\n"},
    {431, "Request Header Fields Too Large", "a request's head has at most 100 headers and 64 KB\n"},
};

std::intptr_t Number(socket_t socket) {
    return static_cast<std::intptr_t>(socket);
}

}  // namespace

HttpConnection::HttpConnection(socket_t socket, const HttpRules& rules) : socket_(socket), rules_(rules) {
    SocketEnds(Number(socket), {ends_.remoteIp, ends_.remotePort}, {ends_.localIp, ends_.localPort});
}

void HttpConnection::LimitTime(int milliseconds) {
    timed_ = milliseconds > 0;
    if (timed_) until_ = Clock::now() + std::chrono::milliseconds(milliseconds);
}

/// How long the next piece may take.
int HttpConnection::WaitMilliseconds() const {
    if (!timed_) return QuietMilliseconds;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until_ - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, QuietMilliseconds));
}

/// Gets what has come behind what is in the buffer, which must have room. 0 at the end of what comes,
/// negative when nothing came in that time.
ssize_t HttpConnection::Fill(int milliseconds) {
    if (milliseconds <= 0 || !Flush()) return -1;
    if (milliseconds != readMilliseconds_) SocketReadTimeSet(Number(socket_), milliseconds);
    readMilliseconds_ = milliseconds;
    const std::ptrdiff_t read =
        SocketReadAwait(Number(socket_), buffer_.data() + end_, buffer_.size() - end_);
    end_ += static_cast<std::size_t>(std::max<std::ptrdiff_t>(read, 0));
    return read;
}

/// Gathers a head at the buffer's begin. 0 for a whole one, else the status that refuses the request, -1
/// where nobody waits for an answer.
int HttpConnection::GatherHead() {
    constexpr int Gone = -1;
    constexpr int BadRequest = 400;
    constexpr int TimedOut = 408;
    constexpr int TooLarge = 431;
    std::size_t searched = 0;
    while ((headEnd_ = HeadEnd({buffer_.data(), end_}, searched)) == 0) {
        if (end_ == buffer_.size()) return TooLarge;
        const bool first = end_ == 0;
        const ssize_t read = Fill(first ? QuietMilliseconds : WaitMilliseconds());
        if (read <= 0 && first) return Gone;
        if (read <= 0) return read == 0 ? BadRequest : TimedOut;
        if (first) LimitTime(rules_.headMilliseconds);
    }
    return 0;
}

bool HttpConnection::TakeHead() {
    constexpr int BadRequest = 400;
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
              buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
    LimitTime(rules_.headMilliseconds);
    int refused = GatherHead();
    if (refused == 0) {
        const HttpFraming framing = HeadRead({buffer_.data(), headEnd_});
        behindHead_ = headEnd_;
        headEnd_ = framing.headBytes;
        chunked_ = framing.chunked;
        chunks_ = {};
        bodyLeft_ = framing.bodyBytes;
        refused = framing.refused;
        if (refused == 0 && !rules_.bodies && !BodyTaken()) refused = BadRequest;
        LimitTime(rules_.bodyMilliseconds);
    }
    if (refused > 0) Refuse(refused);
    return refused == 0;
}

void HttpConnection::Refuse(int status) {
    const auto* const found = std::find_if(std::begin(Refusals), std::end(Refusals),
                                           [status](const Refusal& each) { return each.status == status; });
    const std::string reply = "HTTP/1.1 " + std::to_string(status) + " " + found->reason +
                              "\r\nConnection: close\r\nContent-Type: text/plain\r\nContent-Length: " +
                              std::to_string(std::strlen(found->text)) + "\r\n\r\n" + found->text;
    bodyLeft_ = 1;  // whatever stands behind it is not read
    chunked_ = false;
    write(reply.data(), reply.size());
    Flush();
}

/// How many of the bytes, which come next, belong to the request's body.
std::size_t HttpConnection::OfBody(const char* bytes, std::size_t size) {
    if (chunked_) return chunks_.Take(bytes, size);
    const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(bodyLeft_, size));
    bodyLeft_ -= part;
    return part;
}

ssize_t HttpConnection::read(char* bytes, std::size_t size) {
    if (size == 1 && begin_ + 1 < headEnd_) {  // as the library reads a head
        *bytes = buffer_[begin_++];
        return 1;
    }
    if (headEnd_ == 0) {
        if (BodyTaken()) return 0;
        if (chunks_.Faulty()) return -1;
        if (begin_ == end_) {
            begin_ = 0;
            end_ = 0;
            const ssize_t filled = Fill(WaitMilliseconds());
            if (filled <= 0) return filled;
        }
    }
    std::size_t count = std::min(size, (headEnd_ == 0 ? end_ : headEnd_) - begin_);
    if (headEnd_ == 0) count = OfBody(buffer_.data() + begin_, count);
    if (count == 0) return -1;
    std::memcpy(bytes, buffer_.data() + begin_, count);
    begin_ += count;
    if (begin_ == headEnd_) {
        headEnd_ = 0;
        begin_ = behindHead_;
    }
    return static_cast<ssize_t>(count);
}

bool HttpConnection::Flush() {
    std::size_t sent = 0;
    while (sent < replyBytes_) {
        const std::ptrdiff_t part =
            SocketWrite(Number(socket_), reply_.data() + sent, replyBytes_ - sent, QuietMilliseconds);
        if (part <= 0) return false;
        sent += static_cast<std::size_t>(part);
    }
    replyBytes_ = 0;
    return true;
}

ssize_t HttpConnection::write(const char* bytes, std::size_t size) {
    if (size > reply_.size() - replyBytes_ && !Flush()) return -1;
    if (size > reply_.size()) {
        return SocketWrite(Number(socket_), bytes, size, QuietMilliseconds);
    }
    std::memcpy(reply_.data() + replyBytes_, bytes, size);
    replyBytes_ += size;
    return static_cast<ssize_t>(size);
}

void HttpConnection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = ends_.remoteIp;
    port = ends_.remotePort;
}

void HttpConnection::get_local_ip_and_port(std::string& ip, int& port) const {
    ip = ends_.localIp;
    port = ends_.localPort;
}

}  // namespace vorn
