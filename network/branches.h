// The branches of a snapshot: what opens one, and the judgement of what was traced.

#pragma once

#include "network/analysis.h"

namespace vorn {

/// Traces the branches of the loaded snapshot, and asks the engine for the aisles of slot `project`. True
/// when every branch is closed and every row of a pipe or wire belongs to one; else the verdict is set, and
/// the branches stay as far as they were traced.
bool BranchesTrace(Analysis& analysis, int project);

}  // namespace vorn
