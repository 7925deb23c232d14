// The steps of an analysis. `Net_Access` runs them on the record that the library keeps.

#pragma once

#include <string>

#include "network/analysis.h"

namespace vorn {

/// Takes a fresh snapshot of the project in slot `project`.
void SnapshotLoad(Analysis& analysis, int project);

/// Traces and judges the snapshot, with the aisles of slot `project`, and sets the verdict. True when every
/// branch is closed, every row of a pipe or wire belongs to one and every net holds pressure.
bool SnapshotAnalyse(Analysis& analysis, int project);

/// The verdict of the last `Net_Access`; empty before the first. The next one replaces it.
const std::string& ParseMessageGet();

}  // namespace vorn
