// The snapshot that the network analysis works on.

#pragma once

#include "engine/vorn_records.h"

namespace vorn {

/// The project analysed last, about 4 MB, one for the library. `Net_Access` loads it, and the report writes
/// default identities into it. No lock guards it: analyses and reports come one at a time.
extern ProjectCheckCache ProjectCheck;

/// The snapshot's row of a module or node, null for a number outside the table.
const ModuleRow* ModuleRowFind(int module);
const NodeRow* NodeRowFind(int node);

/// Both tables of links in one order, as the analysis goes through them: the rows of `LinkSx`, then those of
/// `PageLinkSx`. `row` counts from 0 and is below `LinkRowCount`.
inline int LinkRowCount() {
    return ProjectCheck.LinkNb + ProjectCheck.PageLinkNb;
}
inline const LinkSxCache& LinkRowAt(int row) {
    return row < ProjectCheck.LinkNb ? ProjectCheck.LinkSx[row]
                                     : ProjectCheck.PageLinkSx[row - ProjectCheck.LinkNb];
}

}  // namespace vorn
