// The pipes of the machine's servers, by the numbers of their names.

#pragma once

#include <string>

/// The name of a row, 0 to 99.
std::string PipeNameOf(int row);

/// The lowest row whose pipe a process of this user or of root has; -1 for none. Nothing is sent.
int PipeRowFind();

/// Sends `command/name/messages` to the pipe of that row and waits for the reply, ten minutes and more for
/// its size. False, with `fault` saying why, when no reply came.
bool PipeRowAsk(int row, const std::string& request, std::string& reply, std::string& fault);
