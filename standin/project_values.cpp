#include "standin/project_values.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace standin {

namespace {

constexpr double JoulePerKilowattHour = 3.6e6;

/// Points of the chart that a project keeps. When they are there, every second one goes and the rest stand
/// for twice the steps, so that a run of any length stays in sight as a whole.
constexpr std::size_t TemperatureCapacity = 2000;

void RememberTemperature(Project& project, double temperature) {
    if ((project.steps - 1) % project.temperatureSteps != 0) return;
    std::vector<double>& points = project.temperatures;
    points.push_back(temperature);
    if (points.size() < TemperatureCapacity) return;
    for (std::size_t point = 0; point < points.size() / 2; ++point) points[point] = points[2 * point];
    points.resize(points.size() / 2);
    project.temperatureSteps *= 2;
}

/// One more; from the largest number on to `first`.
int Counted(int count, int first) {
    return count < std::numeric_limits<int>::max() ? count + 1 : first;
}

}  // namespace

void ProjectValuesWrite(Project& project, const PlantRows& rows, const PlantOutputs& outputs,
                        double seconds) {
    const auto standard = [&](std::string_view name) -> ProjectVariable& {
        return project.variables[static_cast<std::size_t>(VariableFind(project, name))];
    };
    project.steps = Counted(project.steps, 1);
    int& steps = standard("GStep").integers[0];
    steps = Counted(steps, 0);

    double& temperature = standard("GTemp").reals[0];
    if (outputs.hasMeanTemperature) temperature = outputs.meanTemperature;
    double& energy = standard("WAll").reals[0];  // since the start
    energy = (project.steps == 1 ? 0.0 : energy) + outputs.power * seconds / JoulePerKilowattHour;
    standard("COP").reals[0] = outputs.power > 0.0 ? outputs.heatTaken / outputs.power : 0.0;

    auto& series = standard("GSeries").reals;  // the oldest first
    std::rotate(series.begin(), series.begin() + 1, series.end());
    series.back() = temperature;

    project.stepsUnsolved = project.steps == 1 ? 0 : project.stepsUnsolved;
    if (!outputs.converged) project.stepsUnsolved = Counted(project.stepsUnsolved, 0);
    const auto elements = static_cast<int>(rows.modules.size() + rows.nodes.size());
    standard("GCounts").integers = {elements, outputs.nets, outputs.circuits, outputs.unsolvedNets,
                                    project.stepsUnsolved};
    standard("GAlarms").integers[0] = outputs.alarms;
    RememberTemperature(project, temperature);
}

}  // namespace standin
