// The variables of a project as a whole, as a step leaves them.

#pragma once

#include "standin/plant/plant.h"
#include "standin/project.h"

namespace standin {

/// Counts the step in `GStep`, writes `GTemp`, `WAll`, `COP`, `GSeries` and `GCounts`, and keeps `GTemp` for
/// the chart. The lock is held.
void ProjectValuesWrite(Project& project, const Layout& layout, const PlantOutputs& outputs, double seconds);

}  // namespace standin
