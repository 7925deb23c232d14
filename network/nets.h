// The networks seen from the nodes: what hangs at each port of a node, and which nodes make one net.

#pragma once

#include "network/analysis.h"

namespace vorn {

/// Maps the nodes of the snapshot into nets by the branches of `BranchTable`, all of them closed. A branch
/// end outside the tables is passed over; of two branches at one port the higher number stands. True when
/// each net has a pressure-holding end, a branch from one of its nodes to a module port; else the verdict is
/// set for the first that has none.
bool Net_NodeMatrixMap(Analysis& analysis);

/// True for a node row in use whose kind takes part in nets: all but INFO.
bool Net_NodeInMatrix(const ProjectCheckCache& check, int node);

}  // namespace vorn
