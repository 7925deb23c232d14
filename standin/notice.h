// What the engine says to whoever runs it, on standard error.

#pragma once

#include <string>

namespace standin {

/// Says one line, without its end. Waits for nobody who reads: what is not taken at once goes with the next
/// line, in bounds. Any thread may call it.
void Notice(const std::string& line);

}  // namespace standin
