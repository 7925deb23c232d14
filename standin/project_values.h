// The variables of a project as a whole, as a step leaves them.

#pragma once

#include "standin/plant/plant.h"
#include "standin/project.h"

namespace standin {

/// Counts the step in `GStep`, writes `GTemp`, `WAll`, `COP`, `GSeries`, `GCounts` and `GAlarms`, and keeps
/// `GTemp` for the chart. The lock is held.
void ProjectValuesWrite(Project& project, const PlantRows& rows, const PlantOutputs& outputs, double seconds);

}  // namespace standin
