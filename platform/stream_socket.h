// A connection of the HTTP service. Each operation may be given any socket; on one that is none it fails.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vorn {

/// Waits until there are bytes to be read or the other side has ended; false when the time passed without.
bool SocketAwait(std::intptr_t socket, int milliseconds);

/// Takes up to `size` bytes that have come; 0 at their end, negative on an error. To be called when
/// `SocketAwait` has said so.
std::ptrdiff_t SocketRead(std::intptr_t socket, char* bytes, std::size_t size);

/// How long each `SocketReadAwait` of this connection may wait, more than 0.
void SocketReadTimeSet(std::intptr_t socket, int milliseconds);

/// Waits until something comes, and takes up to `size` bytes of it; 0 at their end, negative on an error or
/// where the time passed without.
std::ptrdiff_t SocketReadAwait(std::intptr_t socket, char* bytes, std::size_t size);

/// Writes as many of `size` bytes as there is room for, at least one; waits for room. Negative when there was
/// none in that time, or the other side has gone.
std::ptrdiff_t SocketWrite(std::intptr_t socket, const char* bytes, std::size_t size, int milliseconds);

/// Says to the other side that no more is sent.
void SocketEndSending(std::intptr_t socket);

/// Closes a connection. Where the other side has sent what nobody read, it can lose the end of the reply.
void SocketClose(std::intptr_t socket);

/// One end of a connection: its address in numbers, and its port.
struct SocketEndpoint {
    std::string& ip;
    int& port;
};

/// The other side's end of a connection and this side's; what cannot be found out stays as it is.
void SocketEnds(std::intptr_t socket, SocketEndpoint remote, SocketEndpoint local);

}  // namespace vorn
