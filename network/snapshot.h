// The rows of a snapshot by number.

#pragma once

#include "engine/vorn_records.h"

namespace vorn {

/// The snapshot's row of a module or node, null for a number outside the table.
const ModuleRow* ModuleRowFind(const ProjectCheckCache& check, int module);
const NodeRow* NodeRowFind(const ProjectCheckCache& check, int node);

/// Runs `run` on each row in use of `LinkSx`, then on each of `PageLinkSx`: its number, counted through both
/// tables, the row, and whether it is a page link.
template <typename Run>
void ForLinkRows(const ProjectCheckCache& check, Run run) {
    for (int row = 0; row < check.LinkNb; ++row) {
        if (check.LinkSx[row].InUse) run(row, check.LinkSx[row], false);
    }
    for (int row = 0; row < check.PageLinkNb; ++row) {
        if (check.PageLinkSx[row].InUse) run(check.LinkNb + row, check.PageLinkSx[row], true);
    }
}

}  // namespace vorn
