// What asks the host to end: Ctrl-C, a lost terminal, the system's request to terminate. What whoever started
// it has it ignore does not.

#pragma once

#include <chrono>

/// Holds these back for `EndAsked`. To be called before another thread starts. From then on a write to a
/// reader that has gone, or beyond the size that a file may have, fails and does not end the program.
void EndSignalsHold();

/// True when one has come since the last call, which this call waits for no longer than that.
bool EndAsked(std::chrono::milliseconds wait);
