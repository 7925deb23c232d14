// The analysis of the snapshot that is loaded.

#pragma once

namespace vorn {

/// Traces and judges what `ProjectCheck` holds, with the aisles of slot `project`, and sets the verdict. True
/// when every branch is closed, every row of a pipe or wire belongs to one and every net holds pressure.
/// `Net_Access` is this behind a fresh snapshot.
bool SnapshotAnalyse(int project);

}  // namespace vorn
