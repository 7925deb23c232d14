// The text form of a request, as the pipe and the serial line carry it: `header/name/value`.

#pragma once

#include <string>

#include "service/caller.h"

namespace vorn {

/// Splits `message` at its first two `/`, dispatches it under `DispatchLock` and sets `reply`. The value is
/// all behind the second `/`; missing fields are empty, and a text of fewer than 5 bytes gives three empty
/// ones.
void PipeMessageSplit(std::string message, std::string& reply, Front front = Front::Pipe);

}  // namespace vorn
