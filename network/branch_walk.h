// The walk that leads opened branches along the rows of the snapshot.
//
// What comes out is that of passes over the rows. An example: modules 4, 7 and 9 have an aisle from port 0 to
// port 1; row 0 links module 7 to module 9, row 1 links node 2 to module 4, row 2 links module 4 to module 7,
// and row 3 links module 9 to node 5. Row 1 opens branch 0 with module 4.
//   Pass 1: row 0 leaves module 7, where no branch stands; row 2 leads the branch to module 7; row 3 finds
//           no branch.
//   Pass 2: row 0 leads it on to module 9, and row 3, which comes later, closes it at node 5.
// The walk here visits rows 2, 0 and 3 alone. A branch that comes to an outlet waits for the outlet's next
// row: for row 2 at once; from row 2 it comes to module 7, whose row 0 has had its turn in this pass, and
// waits for it in the next one; from row 0 it comes to module 9, whose row 3 is still to come.

#pragma once

#include <cstdint>
#include <vector>

#include "network/analysis.h"
#include "network/outlet_rows.h"

namespace vorn {

/// Passes over the rows, at most.
inline constexpr int PassLimit = 256;

/// That a branch passes a module. Steps stand in the order in which they were made.
struct BranchStep {
    std::int32_t branch;
    BranchElement element;
};

/// The module that the downstream end of `link` leads into, and the aisle of its port there.
BranchElement ElementBehind(int project, const LinkSxCache& link);

/// Continues and closes `branches`, each of which has made its first step: step number 0 is that of branch
/// number 0. Up to `PassLimit` times, until a pass finds nothing, each row that is not consumed is taken in
/// order; every open branch whose tail leaves its module at the port that the row comes from goes on along
/// the row, or ends where it leads to, and the row is consumed.
void BranchesWalk(std::vector<BranchSx>& branches, int project, OutletRows& outlets,
                  std::vector<BranchStep>& steps);

}  // namespace vorn
