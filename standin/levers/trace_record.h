// The trace of an engine under test: collected, so that the order of calls can be held against what is
// required.

#pragma once

#include <string>
#include <vector>

namespace standin {

/// Starts collecting, with an empty record. Any thread may call operations meanwhile.
void TraceStart();

/// Ends collecting and gives what was collected, in order.
std::vector<std::string> TraceStop();

}  // namespace standin
