// The verdict of an analysis, as one sentence for people.

#pragma once

#include "network/analysis.h"

namespace vorn {

/// What an analysis can end with, the first thing found wrong.
enum Verdict { Complete = 0, BranchOpen = 1, NetWithoutPressure = 2, RowNotConsumed = 3 };

/// Makes the text of verdict `kind` in `ParseMessage`. `BranchOpen` takes the branch, its tail module and the
/// tail's aisle; `NetWithoutPressure` takes the node as `element`; `RowNotConsumed` takes the row's upstream
/// element and port. What a verdict does not take is -1. An element outside the snapshot counts as one of
/// identity 0.
void Net_ParseMessageSet(Analysis& analysis, Verdict kind, int branch, int element, int number);

}  // namespace vorn
