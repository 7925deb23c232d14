// The engine's operations that start, pause, step and stop projects, copy all their values, and close and
// empty them.

#include <algorithm>
#include <string>

#include "engine/vorn_core.h"
#include "standin/project.h"
#include "standin/project_store.h"
#include "standin/simulation.h"
#include "standin/trace.h"

using namespace standin;

namespace {

constexpr const char* NothingToRun = "项目中没有模块,无法运行";

bool HasModules(const Project& project) {
    return std::any_of(project.modules.rows.begin(), project.modules.rows.end(),
                       [](const Module& module) { return module.inUse; });
}

void LayersCopy(Project& project, int from, int to) {
    const auto copy = [from, to](Element& element) {
        const auto source = static_cast<std::size_t>(from);
        if (element.inUse) element.layers[static_cast<std::size_t>(to)] = element.layers[source];
    };
    std::for_each(project.modules.rows.begin(), project.modules.rows.end(), copy);
    std::for_each(project.nodes.rows.begin(), project.nodes.rows.end(), copy);
}

bool IsCacheSet(int set) {
    return set >= 0 && set < CacheSetCount;
}

}  // namespace

bool PjtStartGet(int slot) {
    Trace("PjtStartGet", slot);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project != nullptr && project->started;
}

void PjtStartSet(int slot, bool started) {
    Trace("PjtStartSet", slot, started);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr || project->started == started) return;
    if (started) SimulationBegin(*project);
    project->started = project->starting = started;
}

bool PjtPauseSxGet(int slot) {
    Trace("PjtPauseSxGet", slot);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project != nullptr && project->paused;
}

void PjtPauseSxSet(int slot, bool paused) {
    Trace("PjtPauseSxSet", slot, paused);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr) return;
    project->paused = paused;
    SimulationWake();
}

void StepSxSet(int slot, bool step) {
    Trace("StepSxSet", slot, step);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project == nullptr) return;
    project->stepRequests = step ? project->stepRequests + 1 : 0;
    SimulationWake();
}

int ProjectControllerRun() {
    Trace("ProjectControllerRun");
    const std::lock_guard guard(EngineLock());
    int begun = 0;
    for (int slot = 0; slot < SlotCount; ++slot) {
        Project* project = ProjectFind(slot);
        if (project == nullptr || !project->starting) continue;
        project->starting = false;
        project->started = HasModules(*project);
        if (project->started) {
            ++begun;
        } else {
            project->access = NothingToRun;
        }
    }
    SimulationWake();
    return begun;
}

bool PeojectAccess_ToServerRefGet(int slot) {
    Trace("PeojectAccess_ToServerRefGet", slot);
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    return project != nullptr && !project->access.empty();
}

const char* PeojectAccessParsingReturn_ToServerGet(int slot) {
    Trace("PeojectAccessParsingReturn_ToServerGet", slot);
    static thread_local std::string text;
    const std::lock_guard guard(EngineLock());
    const Project* project = ProjectFind(slot);
    text = project == nullptr ? std::string() : project->access;
    return text.c_str();
}

void ProjectAllCacheInToRun(int slot, int set) {
    Trace("ProjectAllCacheInToRun", slot, set);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project != nullptr && IsCacheSet(set)) LayersCopy(*project, CacheLayer0 + set, RunLayer);
}

void ProjectAllRunInToCache(int slot, int set) {
    Trace("ProjectAllRunInToCache", slot, set);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(slot);
    if (project != nullptr && IsCacheSet(set)) LayersCopy(*project, RunLayer, CacheLayer0 + set);
}

void ProjectInfoRemove(const char* name) {
    Trace("ProjectInfoRemove", name);
    // A copy: the text may be the project's own.
    const std::string copy(name);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(copy)) ProjectFree(*project);
}

bool ProjectRunFabuGet(const char* name) {
    Trace("ProjectRunFabuGet", name);
    const std::lock_guard guard(EngineLock());
    Project* project = ProjectFind(name);
    if (project == nullptr || !project->stored || !HasModules(*project)) return false;
    LayersCopy(*project, CacheLayer0, RunLayer);
    SimulationBegin(*project);
    SimulationWake();
    return true;
}

void Pipe_ProjectInfoClear(int slot) {
    Trace("Pipe_ProjectInfoClear", slot);
    const std::lock_guard guard(EngineLock());
    if (Project* project = ProjectFind(slot)) ProjectEmpty(*project);
}
