#include "standin/simulation.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <limits>
#include <string_view>
#include <system_error>
#include <thread>

#include "standin/control.h"

namespace standin {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto StepTime = std::chrono::milliseconds(100);

constexpr double EvaporatingGoal = -10.0;  // degrees Celsius
constexpr double CondensingTemperature = 40.0;
constexpr double ZeroCelsius = 273.15;
constexpr double Efficiency = 0.5;  // of what an ideal machine would reach
constexpr double StepHours = 0.1 / 3600.0;
constexpr double BasePower = 1.0;    // kW that a plant takes with no power set anywhere
constexpr double GlobalPace = 0.02;  // the part of the way to its goal that a value goes in one step
constexpr double LocalPace = 0.01;

/// Points of the chart that a project keeps. When they are there, every second one goes and the rest stand
/// for twice the steps, so that a run of any length stays in sight as a whole.
constexpr std::size_t TemperatureCapacity = 2000;

/// An item of a module and the item of the same module that it goes towards.
struct Drift {
    std::string_view item;
    std::string_view goal;
};

constexpr Drift RoomDrifts[] = {{"InsideTemperature", "OutsideTemperature"},
                                {"InsideHumidity", "OutsideHumidity"},
                                {"InsidePm25", "OutsidePm25"}};

/// One of the variables that every project has.
ProjectVariable& Standard(Project& project, std::string_view name) {
    return project.variables[static_cast<std::size_t>(VariableFind(project, name))];
}

void Approach(double& value, double goal, double pace) {
    value += (goal - value) * pace;
}

/// The run value of a module's item, null where its type has no such item.
double* RunItem(Module& module, std::string_view item) {
    const int row = ItemRow(Catalogue()[static_cast<std::size_t>(module.type)].items, item);
    return row < 0 ? nullptr : &module.layers[RunLayer].items[static_cast<std::size_t>(row)];
}

/// Steps one module and gives the power that it takes, in kW.
double ModuleStep(Module& module, double storeGoal) {
    for (const Drift& drift : RoomDrifts) {
        double* value = RunItem(module, drift.item);
        if (value != nullptr) Approach(*value, *RunItem(module, drift.goal), LocalPace);
    }
    if (double* store = RunItem(module, "BKT_TEMP")) Approach(*store, storeGoal, LocalPace);
    const double* power = RunItem(module, "Power");
    return power == nullptr ? 0.0 : *power;
}

void RememberTemperature(Project& project, double temperature) {
    if ((project.steps - 1) % project.temperatureSteps != 0) return;
    std::vector<double>& points = project.temperatures;
    points.push_back(temperature);
    if (points.size() < TemperatureCapacity) return;
    for (std::size_t point = 0; point < points.size() / 2; ++point) points[point] = points[2 * point];
    points.resize(points.size() / 2);
    project.temperatureSteps *= 2;
}

bool Running(const Project& project) {
    return project.started && !project.starting && !project.paused;
}

/// Calls `visit` for each open project while none gives true, and tells whether one did.
template <typename Visit>
bool AnyProject(Visit visit) {
    for (int slot = 0; slot < SlotCount; ++slot) {
        Project* project = ProjectFind(slot);
        if (project != nullptr && visit(*project)) return true;
    }
    return false;
}

bool StepsRequested() {
    return !SimulationKeptOff() &&
           AnyProject([](const Project& project) { return project.stepRequests > 0; });
}

bool AnyRunning() {
    return !SimulationKeptOff() && AnyProject(Running);
}

void StepRequested() {
    AnyProject([](Project& project) {
        for (; project.stepRequests > 0; --project.stepRequests) SimulationStep(project);
        return false;
    });
}

void StepRunning() {
    AnyProject([](Project& project) {
        if (Running(project)) SimulationStep(project);
        return false;
    });
}

// Never destroyed: the thread waits on it while the process ends.
std::condition_variable& Wakening() {
    static auto& wakening = *new std::condition_variable;
    return wakening;
}

/// The thread's work. The lock is held but for the waits.
void RunForever() {
    std::unique_lock lock(EngineLock());
    Clock::time_point next = Clock::now() + StepTime;
    for (;;) {
        Wakening().wait(lock, [] { return StepsRequested() || AnyRunning(); });
        // After a rest, and after steps that took longer than their time, the beat begins anew.
        if (next < Clock::now()) next = Clock::now() + StepTime;
        while (AnyRunning() && Clock::now() < next) {
            Wakening().wait_until(lock, next);
            if (StepsRequested()) StepRequested();
        }
        if (StepsRequested()) StepRequested();
        if (!AnyRunning()) continue;
        StepRunning();
        next += StepTime;
    }
}

}  // namespace

void SimulationStep(Project& project) {
    project.steps = project.steps < std::numeric_limits<int>::max() ? project.steps + 1 : 1;
    int& counted = Standard(project, "GStep").integers[0];
    counted = counted < std::numeric_limits<int>::max() ? counted + 1 : 0;

    double& evaporating = Standard(project, "GTemp").reals[0];
    Approach(evaporating, EvaporatingGoal, GlobalPace);
    const double temperature = evaporating;

    double power = BasePower;
    for (Module& module : project.modules.rows) {
        if (module.inUse) power += ModuleStep(module, temperature);
    }
    Standard(project, "WAll").reals[0] += power * StepHours;
    const double lift = std::max(CondensingTemperature - temperature, 1.0);
    Standard(project, "COP").reals[0] = Efficiency * (temperature + ZeroCelsius) / lift;
    RememberTemperature(project, temperature);
}

void SimulationBegin(Project& project) {
    project.started = true;
    project.starting = false;
    project.access.clear();
    project.steps = 0;
    project.temperatures.clear();
    project.temperatureSteps = 1;
}

void SimulationWake() {
    static bool threadRuns = false;
    if (threadRuns) {
        Wakening().notify_all();
    } else if (StepsRequested() || AnyRunning()) {
        try {
            std::thread(RunForever).detach();
            threadRuns = true;
        } catch (const std::system_error& fault) {
            // The next call tries again.
            std::fprintf(stderr, "simulation: no thread can be made: %s\n", fault.what());
        }
    }
}

}  // namespace standin
