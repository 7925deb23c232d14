#include "transport/http_connection.h"

#include <algorithm>
#include <string_view>

#include "platform/stream_socket.h"

namespace vorn {

namespace {

constexpr std::string_view HiddenName = "RANGE";
constexpr std::size_t OtherLine = HiddenName.size();

/// True for a letter of the name, in upper or lower case.
bool Matches(char byte, char letter) {
    return byte == letter || byte == letter - 'A' + 'a';
}

std::intptr_t Number(socket_t socket) {
    return static_cast<std::intptr_t>(socket);
}

}  // namespace

bool HttpConnection::AwaitRequest(int milliseconds) {
    inHead_ = true;
    matched_ = OtherLine;  // the request line is no header
    return begin_ < end_ || SocketAwait(Number(socket_), milliseconds);
}

bool HttpConnection::is_readable() const {
    return begin_ < end_ || SocketAwait(Number(socket_), readMilliseconds_);
}

/// Gets what has come into the empty buffer. 0 at the end of what comes, negative when nothing came in time.
ssize_t HttpConnection::Fill() {
    if (!is_readable()) return -1;
    const std::ptrdiff_t read = SocketRead(Number(socket_), buffer_.data(), buffer_.size());
    begin_ = 0;
    end_ = static_cast<std::size_t>(std::max<std::ptrdiff_t>(read, 0));
    return read;
}

/// Spoils the last letter of the header's name.
void HttpConnection::HideRange(char& byte) {
    if (byte == '\n') {
        matched_ = 0;
    } else if (matched_ < OtherLine) {
        const bool matches = Matches(byte, HiddenName[matched_]);
        matched_ = matches ? matched_ + 1 : OtherLine;
        if (matches && matched_ == HiddenName.size()) byte = '_';
    }
}

ssize_t HttpConnection::read(char* bytes, std::size_t size) {
    if (begin_ == end_) {
        const ssize_t filled = Fill();
        if (filled <= 0) return filled;
    }
    const std::size_t count = std::min(size, end_ - begin_);
    std::copy_n(buffer_.data() + begin_, count, bytes);
    begin_ += count;
    if (inHead_) std::for_each(bytes, bytes + count, [this](char& byte) { HideRange(byte); });
    return static_cast<ssize_t>(count);
}

ssize_t HttpConnection::write(const char* bytes, std::size_t size) {
    return SocketWrite(Number(socket_), bytes, size, writeMilliseconds_);
}

}  // namespace vorn
