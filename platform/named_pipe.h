// Named pipes, for the pipe service. The operations bear the Windows names and carry what the service needs
// of each, so that both systems can stand under one loop. (The names end in W where those do: the ones
// without it are macros there.)
//
// On Linux a pipe NAME is the abstract Unix socket NAME: exclusive, machine-wide, and gone with its process.
// Only processes of the same user and of root are served, and only their pipes are used. A connection
// carries one request and one reply, each of at most `PipeTextBytesAtMost` bytes.

#pragma once

#include <cstddef>
#include <string_view>

namespace vorn {

/// One end of a pipe. A null pointer stands for the invalid handle; only where an operation says so may it
/// be given one. Used by one thread at a time.
struct NamedPipe;

/// Longer requests and replies are taken for those of a program that never ends, and dropped.
inline constexpr std::size_t PipeTextBytesAtMost = std::size_t{256} << 20U;

/// How long the other side may hold an operation up before it is let go: a client until its request is whole,
/// either side until it reads or writes on. 60 s at first; tests take less. A client waits five times as long
/// for its reply, since others may be served before it.
void PipeHoldSet(int milliseconds);

/// Makes the server's end of a new pipe, to be closed by `CloseHandle`. Null when a pipe of that name exists.
NamedPipe* CreateNamedPipeW(std::string_view name);

/// Waits without a time limit for the next client. True when it is there to be served; false when it was let
/// go, and the next one is to be waited for. On Linux it also waits for the whole request: the client has
/// ended its writing, or was silent for 20 ms (for 250 ms in a request that one write cannot have brought,
/// since its writer may be waiting for a processor). One that leaves without a request is let go.
bool ConnectNamedPipe(NamedPipe* pipe);

/// Tells how many bytes wait in the pipe, at once. False when none will come any more.
bool PeekNamedPipe(NamedPipe* pipe, std::size_t& waiting);

/// Takes up to `size` bytes out of the pipe and gives their number. At a client's end it waits for them and
/// gives fewer than `size` only at the end of the reply, or when the server has held it up for too long; the
/// first read ends the request.
std::size_t ReadFile(NamedPipe* pipe, char* bytes, std::size_t size);

/// Writes the whole text and waits while the other side does not read. False when it is gone, or has held
/// this side up for too long: the connection is then broken.
bool WriteFile(NamedPipe* pipe, std::string_view text);

/// Ends the reply and waits until the client has read it, has gone, or has held this side up for too long.
void FlushFileBuffers(NamedPipe* pipe);

/// Ends the connection; the next client can then connect to the same pipe.
void DisconnectNamedPipe(NamedPipe* pipe);

/// Waits until the pipe can be connected to. On Linux clients queue at the pipe itself and this has nothing
/// to wait for.
void WaitNamedPipeW(std::string_view name);

/// Opens a client's end of the pipe, to be closed by `CloseHandle`. Null when there is no such pipe, or no
/// place in its queue for 100 ms.
NamedPipe* CreateFileW(std::string_view name);

/// Closes either end and ends its connection. Does nothing with a null pointer.
void CloseHandle(NamedPipe* pipe);

}  // namespace vorn
