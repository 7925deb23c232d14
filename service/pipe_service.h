// The named-pipe service and its client. `PipeServerThread`, declared in the public header, runs the service.

#pragma once

#include <string>

#include "platform/named_pipe.h"
#include "service/service_places.h"

namespace vorn {

/// The pipe that this library serves, null while there is none. Written by the thread that takes the pipe.
inline NamedPipe* PipeHandle = nullptr;

/// The pipe name of a row, 0 to 99.
std::string PipeName(int row);

/// Makes the pipe. `out` gets the handle, null when that failed.
bool PipeOpen(const char* name, NamedPipe*& out);

/// True when a server of this directory answers on one of the 100 names.
bool PipeServerProbe();

/// Sends one request to a pipe and gives the reply: "LinkNone" when the pipe cannot be opened, the empty text
/// when the exchange breaks off.
std::string PipeExchange(const char* name, std::string message);

/// Writes a reply to the client of `PipeHandle` and waits until it is read; a client that is gone loses it.
void PipeReply(std::string text);

/// Serves the next client of `PipeHandle`, one exchange; waits until there is one. One for which there is no
/// memory is let go. Lets no exception out.
void PipeServeClient();

}  // namespace vorn
