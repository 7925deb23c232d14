// The last step of an import: what the models and the document say of each element.

#pragma once

namespace vorn {

/// Loads the named model of each module in the device list of slot `pjtnb` into its cache set 0. A model that
/// the store does not have is passed over.
void ModelParametersLoad(int pjtnb);

/// Writes length and number of elbows of each connection of slot `pjtnb` into its pipe's table of items.
/// Behind `ModelParametersLoad`, so that a pipe's own values stand.
void PipeParametersSet(int pjtnb);

}  // namespace vorn
