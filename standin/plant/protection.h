// The protection of compressors, and the alarms of modules.

#pragma once

#include "standin/plant/report.h"

namespace standin {

/// Adds the items `Trip` and `Alarm` as they are behind a step, and counts the alarms. The ports and the
/// temperatures of rooms are in `outputs` already.
void ReportProtection(const PlantState& state, const PlantInputs& inputs, PlantOutputs& outputs);

}  // namespace standin
