// The topology of the project analysed last, as JSON.

#pragma once

#include "network/analysis.h"

namespace vorn {

/// Writes devices, nodes, connections and branches of the analysis into `ReportText`, and uses the analysis
/// up. Rows of the snapshot that have no identity get their default one. A module type or node kind outside
/// the tables has the empty name.
void TopologyReport(Analysis& analysis);

}  // namespace vorn
