// What asks the host to end: Ctrl-C, a lost terminal, the system's request to terminate.

#pragma once

#include <chrono>

/// Holds these back for `EndAsked`. To be called before another thread starts.
void EndSignalsHold();

/// True when one has come since the last call, which this call waits for no longer than that.
bool EndAsked(std::chrono::milliseconds wait);
