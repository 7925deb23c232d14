#include "standin/run_time.h"

#include <algorithm>

#include "standin/simulation.h"
#include "standin/values.h"

namespace standin {

namespace {

struct Limits {
    StandardVariable row;
    double low;
    double high;
};
constexpr Limits VariableLimits[] = {
    {StepSecondsRow, 0.01, 60.0}, {RateRow, 0.0, 1e6}, {UntilRow, 0.0, 1e12}};

/// The value within the limits of its variable, if it has some.
double Limited(std::size_t row, double value) {
    value = Kept(value);
    for (const Limits& limits : VariableLimits) {
        if (limits.row == row) return std::clamp(value, limits.low, limits.high);
    }
    return value;
}

/// A stored file can have any number.
double RealOf(const Project& project, StandardVariable row) {
    return Limited(row, project.variables[row].reals[0]);
}

/// Adds to the time so that the roundings of millions of steps do not add up.
void TimeAdd(Project& project, double seconds) {
    const double more = seconds - project.timeLost;
    const double sum = project.time + more;
    project.timeLost = (sum - project.time) - more;
    project.time = sum;
}

}  // namespace

double StepSecondsOf(const Project& project) {
    return RealOf(project, StepSecondsRow);
}

double BeatSecondsOf(const Project& project) {
    const double rate = RealOf(project, RateRow);
    return rate > 0.0 ? StepSecondsOf(project) / rate : 0.0;
}

void VariableStore(Project& project, int row, double value) {
    const auto index = static_cast<std::size_t>(row);
    project.variables[index].reals[0] = Limited(index, value);
    if (index == StepSecondsRow || index == RateRow) SimulationWake();
}

void TimeBegin(Project& project) {
    project.time = project.timeLost = 0.0;
    project.variables[TimeRow].reals[0] = project.variables[LagRow].reals[0] = 0.0;
}

void TimeAdvance(Project& project, double seconds) {
    const double before = project.time;
    TimeAdd(project, seconds);
    project.variables[TimeRow].reals[0] = project.time;
    // Within a millionth of a step it is there: the sum of steps is not exact.
    const double until = RealOf(project, UntilRow) - seconds * 1e-6;
    if (before < until && project.time >= until) project.paused = true;
}

}  // namespace standin
