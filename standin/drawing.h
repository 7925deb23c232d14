// The drawings of a project, as SVG texts that the drawing operations write into its folder.

#pragma once

#include <span>
#include <string>
#include <string_view>

#include "standin/project.h"

namespace standin {

/// Modules and nodes at their grid positions, one page below the other; links as straight lines with an arrow
/// in the flow's direction. Pipes, wires and jumps, whose positions tell little, stand in the middle of what
/// they join. The lock is held.
std::string PlantSvg(const Project& project);

/// `GTemp` over the steps of a run. `temperatures` holds one for every `stepsEach` steps, from step 1 on.
/// Values that are no number a chart can show leave a gap in the line.
std::string ChartSvg(std::string_view name, std::span<const double> temperatures, int stepsEach);

/// Waits until all that was asked for is drawn.
void DrawingFinish();

}  // namespace standin
