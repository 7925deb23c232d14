// The last step of an import: what the models and the document say of each element.

#pragma once

#include <vector>

#include "import/import_lists.h"

namespace vorn {

/// Loads the named model of each of the devices that is a module of slot `pjtnb` into its cache set 0. A
/// model that the store does not have is passed over.
void ModelParametersLoad(int pjtnb, const std::vector<DeviceEntry>& devices);

/// Writes length and number of elbows of each connection into its pipe's table of items. Behind
/// `ModelParametersLoad`, so that a pipe's own values stand.
void PipeParametersSet(int pjtnb, const std::vector<ConnectionEntry>& connections);

}  // namespace vorn
