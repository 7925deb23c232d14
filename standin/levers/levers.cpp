#include "standin/levers/levers.h"

#include <array>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "standin/project.h"
#include "standin/simulation.h"

namespace standin {

namespace {

constexpr std::array<int, TableKindCount> FullCapacities{ModuleCapacity, NodeCapacity, LinkCapacity};

struct Control {
    std::array<int, TableKindCount> capacities = FullCapacities;
    bool refuseNextAddition = false;
    int viewBusyPolls = 0;
    bool simulationKeptOff = false;
    std::unordered_map<std::string, DecodedName> names;
};

// Never destroyed: the engine's threads may work while the process ends.
Control& TheControl() {
    static Control& control = *new Control;
    return control;
}

}  // namespace

void CapacitySet(TableKind table, int capacity) {
    const std::lock_guard guard(EngineLock());
    TheControl().capacities[table] = capacity;
    for (int slot = 0; slot < SlotCount; ++slot) {
        Project* project = ProjectFind(slot);
        if (project == nullptr) continue;
        if (table == ModuleTable) project->modules.capacity = capacity;
        if (table == NodeTable) project->nodes.capacity = capacity;
        if (table == LinkTable) project->links.capacity = capacity;
    }
}

int CapacityOf(TableKind table) {
    return TheControl().capacities[table];
}

void RefuseNextAddition() {
    const std::lock_guard guard(EngineLock());
    TheControl().refuseNextAddition = true;
}

bool AdditionRefused() {
    return std::exchange(TheControl().refuseNextAddition, false);
}

void ViewBusySet(int polls) {
    const std::lock_guard guard(EngineLock());
    TheControl().viewBusyPolls = polls;
}

bool ViewBusy() {
    int& polls = TheControl().viewBusyPolls;
    if (polls == 0) return false;
    if (polls > 0) --polls;
    return true;
}

void SimulationKeepOff(bool off) {
    const std::lock_guard guard(EngineLock());
    TheControl().simulationKeptOff = off;
    SimulationWake();
}

bool SimulationKeptOff() {
    return TheControl().simulationKeptOff;
}

void NameDefine(const std::string& name, const DecodedName& decoded) {
    const std::lock_guard guard(EngineLock());
    TheControl().names[name] = decoded;
    NextRevision();
}

bool NameDefined(std::string_view name, DecodedName& decoded) {
    const auto& names = TheControl().names;
    if (names.empty()) return false;
    const auto found = names.find(std::string(name));
    if (found == names.end()) return false;
    decoded = found->second;
    return true;
}

void EngineReset() {
    const std::lock_guard guard(EngineLock());
    TheControl() = Control();
    NextRevision();
    for (int slot = 0; slot < SlotCount; ++slot) {
        if (Project* project = ProjectFind(slot)) ProjectFree(*project);
    }
}

}  // namespace standin
