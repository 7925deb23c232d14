// The chart of a project's run.

#pragma once

#include <span>
#include <string>
#include <string_view>

namespace standin {

/// `GTemp` over the steps of a run as an SVG text. `temperatures` holds one for every `stepsEach` steps, from
/// step 1 on; without any the chart says that nothing has run. Values that are no number a chart can show
/// leave a gap in the line.
std::string ChartSvg(std::string_view name, std::span<const double> temperatures, int stepsEach);

}  // namespace standin
