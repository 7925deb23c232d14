#include "standin/simulation.h"
#include "platform/notice.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "standin/control.h"
#include "standin/held_values.h"
#include "standin/plant_step.h"
#include "standin/run_time.h"

namespace standin {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Threads that step, at least and at most: a heavy project holds one of them.
constexpr unsigned FewestThreads = 2;
constexpr unsigned MostThreads = 4;

/// A run that is behind its beat by no more makes up for it; one that is further behind loses that time.
constexpr Seconds CatchUp{1.0};

/// A run without a beat lets others at the engine's lock that often, and for that long.
constexpr auto RestEvery = std::chrono::milliseconds(2);
constexpr auto RestTime = std::chrono::microseconds(50);

/// The rest where there is no memory for a step.
constexpr auto MemoryRest = std::chrono::milliseconds(100);

/// The beat of the project in a slot. The lock guards it.
struct Beat {
    bool stepping = false;    ///< a thread makes a step of it
    bool begun = false;       ///< `due` counts
    std::uint64_t run = 0;    ///< the project's, for which the beat was begun
    double seconds = 0.0;     ///< from step to step; 0 without a beat
    Clock::time_point due{};  ///< of the next step
    Seconds lost{};           ///< since the beat was begun
};

Beat& BeatOf(int slot) {
    static std::array<Beat, SlotCount> beats;
    return beats[static_cast<std::size_t>(slot)];
}

Clock::duration Ticks(double seconds) {
    constexpr double Longest = 1e6;  // far from the clock's end; a change of the rate begins the beat anew
    return std::chrono::duration_cast<Clock::duration>(Seconds(std::min(seconds, Longest)));
}

/// When the project in a slot is to be stepped; nothing where it is not, or is being stepped.
std::optional<Clock::time_point> DueOf(int slot) {
    const Project* project = ProjectFind(slot);
    Beat& beat = BeatOf(slot);
    if (project == nullptr || SimulationKeptOff() || beat.stepping) return std::nullopt;
    if (project->stepRequests > 0) return Clock::time_point::min();
    if (!Runs(*project)) {
        beat.begun = false;
        return std::nullopt;
    }
    const double seconds = BeatSecondsOf(*project);
    if (!beat.begun || beat.run != project->run || beat.seconds != seconds) {
        beat = {.begun = true, .run = project->run, .seconds = seconds, .due = Clock::now() + Ticks(seconds)};
    }
    return beat.due;
}

/// The slot that is to be stepped first, -1 where none is.
int EarliestSlot(Clock::time_point& due) {
    int earliest = -1;
    for (int slot = 0; slot < SlotCount; ++slot) {
        const auto mine = DueOf(slot);
        if (!mine || (earliest >= 0 && *mine >= due)) continue;
        earliest = slot;
        due = *mine;
    }
    return earliest;
}

/// Where there is no memory for a step it is not made, and its time passes.
bool Step(int slot, double seconds, StepCause cause) {
    try {
        return PlantStep(slot, seconds, cause);
    } catch (const std::bad_alloc&) {
        std::this_thread::sleep_for(MemoryRest);
        return false;
    }
}

/// Moves a beat on behind a step, and tells in `GLag` how far behind it the run is.
void BeatGoOn(Beat& beat, Project& project) {
    const Clock::time_point now = Clock::now();
    beat.due = beat.seconds > 0.0 ? beat.due + Ticks(beat.seconds) : now;
    const Seconds late = now - beat.due;
    if (late > CatchUp) {
        beat.lost += late;
        beat.due = now;
    }
    if (!Runs(project) || project.run != beat.run) return;
    const Seconds behind = beat.lost + std::max(Seconds(now - beat.due), Seconds(0));
    project.variables[LagRow].reals[0] = behind.count();
}

/// Makes one step. A request that a change of the project made vain stays, and is answered the next time.
void StepSlot(int slot, std::unique_lock<std::mutex>& lock) {
    Beat& beat = BeatOf(slot);
    const Project* asked = ProjectFind(slot);
    const bool requested = asked->stepRequests > 0;
    const double seconds = StepSecondsOf(*asked);
    beat.stepping = true;
    lock.unlock();
    const bool made = Step(slot, seconds, requested ? StepCause::Request : StepCause::Run);
    lock.lock();
    beat.stepping = false;
    Project* project = ProjectFind(slot);
    if (project == nullptr) return;
    if (!requested) {
        BeatGoOn(beat, *project);
    } else if (made && project->stepRequests > 0) {
        --project->stepRequests;
    }
}

// Never destroyed: the threads wait on it while the process ends.
std::condition_variable& Wakening() {
    static auto& wakening = *new std::condition_variable;
    return wakening;
}

/// A thread's work. The lock is held but for the waits and the steps.
void RunForever() {
    std::unique_lock lock(EngineLock());
    Clock::time_point rested = Clock::now();
    for (;;) {
        Clock::time_point due;
        const int slot = EarliestSlot(due);
        if (slot < 0) {
            Wakening().wait(lock);
        } else if (due > Clock::now()) {
            Wakening().wait_until(lock, due);
        } else {
            StepSlot(slot, lock);
            if (Clock::now() - rested < RestEvery) continue;
            lock.unlock();
            std::this_thread::sleep_for(RestTime);
            rested = Clock::now();
            lock.lock();
        }
    }
}

/// Makes a thread; false, with a notice, where the system has none.
bool ThreadMake() {
    try {
        std::thread(RunForever).detach();
        return true;
    } catch (const std::system_error& fault) {
        vorn::Notice(vorn::NoticeKind::Fault,
                     std::string("simulation: no thread can be made: ") + fault.what());
        return false;
    }
}

}  // namespace

void SimulationBegin(Project& project) {
    project.started = true;
    project.starting = false;
    project.access.clear();
    project.run = NextRevision();
    project.steps = 0;
    TimeBegin(project);
    HeldClear(project);
    project.variables[ScriptRow].integers[0] = static_cast<int>(ScriptState::None);
    project.scriptFault.clear();
    project.temperatures.clear();
    project.temperatureSteps = 1;
}

void SimulationWake() {
    static unsigned threads = 0;
    Clock::time_point due;
    if (threads == 0 && EarliestSlot(due) < 0) return;
    const unsigned wanted = std::clamp(std::thread::hardware_concurrency(), FewestThreads, MostThreads);
    // Where some cannot be made the next call tries again.
    while (threads < wanted && ThreadMake()) ++threads;
    Wakening().notify_all();
}

}  // namespace standin
