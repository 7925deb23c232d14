// The walk that leads opened branches along the rows of the snapshot.

#pragma once

#include "engine/vorn_records.h"
#include "network/branches.h"
#include "network/outlet_rows.h"

namespace vorn {

/// Passes over the rows, at most.
inline constexpr int PassLimit = 256;

/// The module that the downstream end of `link` leads into, and the aisle of its port there.
BranchElement ElementBehind(int project, const LinkSxCache& link);

/// Continues and closes the branches of `BranchTable`, each of which has an element. What comes out is that
/// of these passes: up to `PassLimit` times, until one finds nothing, each row in use that is not marked and
/// comes from a through port is taken in order; every open branch whose tail leaves its module at that port
/// goes on along the row, or ends where it leads to, and the row is marked.
void BranchesWalk(int project, RowMarks& consumed);

}  // namespace vorn
