// Named pipes, for the pipe service and its clients. The operations bear the Windows names and carry what the
// service needs of each, so that both systems can stand under one loop. (The names end in W where those do:
// the ones without it are macros there.)
//
// A pipe serves one client at a time; a connection carries one request and one reply. Only processes of the
// same user, or of one whom the system sets above all, are served, and only their pipes are used.
//
// A server waits for its client only for a time: one exchange, from its connection to its end, has the hold
// time, 60 s, and as much again for each MiB of the reply, for all its waits together. When that is used up
// the client is let go. What the server itself takes between two operations does not count. A client waits
// ten times the hold time for its server, since others may be served before it, and as above for the reply.

#pragma once

#include <cstddef>
#include <string_view>

namespace vorn {

/// One end of a pipe. A null pointer stands for the invalid handle; only where an operation says so may it
/// be given one. Used by one thread at a time.
struct NamedPipe;

/// A client with a longer request is let go. Read at the pipe's pace, a chunk a millisecond, one of this size
/// takes a little over a minute.
inline constexpr std::size_t PipeRequestBytesAtMost = std::size_t{16} << 20U;
/// A client takes no longer reply.
inline constexpr std::size_t PipeReplyBytesAtMost = std::size_t{256} << 20U;
/// The bytes of a reply that add one hold time to an exchange. With 60 s that is the pace of a client that
/// rests for 15 ms, the tick of a coarse clock, behind each chunk.
inline constexpr std::size_t PipeReplyBytesPerHold = std::size_t{1} << 20U;

/// Sets the hold time while no exchange runs. 60 s at first; tests take less.
void PipeHoldSet(int milliseconds);

/// Makes the server's end of a new pipe, to be closed by `CloseHandle`. Null when a pipe of that name exists,
/// and for a name that the system does not take.
NamedPipe* CreateNamedPipeW(std::string_view name);

/// Waits without a time limit for the next client, and for the beginning of its request. True when there are
/// bytes to be read; false when the client was let go, and the next one is to be waited for.
bool ConnectNamedPipe(NamedPipe* pipe);

/// Tells how many bytes wait in the pipe, at once. False when none will come any more.
bool PeekNamedPipe(NamedPipe* pipe, std::size_t& waiting);

/// Takes up to `size` bytes out of the pipe; `read` gets their number. A server takes what waits. A client
/// waits and gets fewer than `size` only at the end of the reply; its first read ends its request. False,
/// with what came until then, when the other side broke off or held this one up for too long.
bool ReadFile(NamedPipe* pipe, char* bytes, std::size_t size, std::size_t& read);

/// Writes the whole text and waits while the other side does not read. False when it is gone, is another
/// user's, or has held this side up for too long: the connection is then broken.
bool WriteFile(NamedPipe* pipe, std::string_view text);

/// Ends the reply and waits until the client has read it, has gone, or has held this side up for too long.
void FlushFileBuffers(NamedPipe* pipe);

/// Ends the connection; the next client can then connect to the same pipe.
void DisconnectNamedPipe(NamedPipe* pipe);

/// Waits until the pipe can be connected to, or is gone.
void WaitNamedPipeW(std::string_view name);

/// Opens a client's end of the pipe, to be closed by `CloseHandle`. Null when there is no such pipe, or no
/// place at it now.
NamedPipe* CreateFileW(std::string_view name);

/// Closes either end and ends its connection. Does nothing with a null pointer.
void CloseHandle(NamedPipe* pipe);

enum class PipeHolder { Nobody, ThisProcess, ThisUser, AnotherUser };

/// Tells who holds a pipe, without a word to it; `ThisUser` is whoever's pipes may be used. A busy pipe is
/// waited for where the system cannot tell otherwise.
PipeHolder PipeHolderOf(std::string_view name);

}  // namespace vorn
