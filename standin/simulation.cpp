#include "standin/simulation.h"
#include "platform/notice.h"

#include <chrono>
#include <condition_variable>
#include <new>
#include <string>
#include <system_error>
#include <thread>

#include "standin/control.h"
#include "standin/plant_step.h"

namespace standin {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto StepTime = std::chrono::milliseconds(100);

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
    return !SimulationKeptOff() && AnyProject(Runs);
}

/// Where there is no memory for a step it is not made, and its time passes.
bool Step(int slot, StepCause cause) {
    try {
        return PlantStep(slot, StepSeconds, cause);
    } catch (const std::bad_alloc&) {
        std::this_thread::sleep_for(StepTime);
        return false;
    }
}

/// A request that a change of the project made vain stays, and is answered the next time round.
void StepRequested(std::unique_lock<std::mutex>& lock) {
    for (int slot = 0; slot < SlotCount; ++slot) {
        const Project* asked = ProjectFind(slot);
        if (SimulationKeptOff() || asked == nullptr || asked->stepRequests == 0) continue;
        lock.unlock();
        const bool made = Step(slot, StepCause::Request);
        lock.lock();
        Project* project = ProjectFind(slot);
        if (made && project != nullptr && project->stepRequests > 0) --project->stepRequests;
    }
}

void StepRunning(std::unique_lock<std::mutex>& lock) {
    for (int slot = 0; slot < SlotCount; ++slot) {
        const Project* project = ProjectFind(slot);
        if (SimulationKeptOff() || project == nullptr || !Runs(*project)) continue;
        lock.unlock();
        Step(slot, StepCause::Run);
        lock.lock();
    }
}

// Never destroyed: the thread waits on it while the process ends.
std::condition_variable& Wakening() {
    static auto& wakening = *new std::condition_variable;
    return wakening;
}

/// The thread's work. The lock is held but for the waits and the steps.
void RunForever() {
    std::unique_lock lock(EngineLock());
    Clock::time_point next = Clock::now() + StepTime;
    for (;;) {
        Wakening().wait(lock, [] { return StepsRequested() || AnyRunning(); });
        // After a rest, and after steps that took longer than their time, the beat begins anew.
        if (next < Clock::now()) next = Clock::now() + StepTime;
        while (AnyRunning() && Clock::now() < next) {
            Wakening().wait_until(lock, next);
            if (StepsRequested()) StepRequested(lock);
        }
        if (StepsRequested()) StepRequested(lock);
        if (!AnyRunning()) continue;
        StepRunning(lock);
        next += StepTime;
    }
}

}  // namespace

void SimulationBegin(Project& project) {
    project.started = true;
    project.starting = false;
    project.access.clear();
    project.run = NextRevision();
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
            vorn::Notice(vorn::NoticeKind::Fault,
                         std::string("simulation: no thread can be made: ") + fault.what());
        }
    }
}

}  // namespace standin
