// A client of the pipe service, as the wire has it: an abstract Unix socket for each of the 100 names, one
// request and one reply on each connection.

#pragma once

#include <string>

inline constexpr int PipeRows = 100;

/// The name of a row, 0 to 99.
std::string PipeNameOf(int row);

/// The lowest row that this process holds, or with `ofThisUser` that any process of this user or root holds;
/// -1 for none. Nothing is sent.
int PipeRowFind(bool ofThisUser);

/// Sends `command/name/messages` to the pipe of that row and waits for the reply, ten minutes at most. False,
/// with `fault` saying why, when no reply came.
bool PipeAsk(int row, const std::string& request, std::string& reply, std::string& fault);
