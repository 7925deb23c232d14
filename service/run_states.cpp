#include "service/run_states.h"

#include <array>
#include <exception>
#include <string>

#include "elements/slot.h"
#include "engine/vorn_core.h"
#include "service/event_queue.h"

namespace vorn {

namespace {

struct Seen {
    std::string project{};  ///< empty for a free slot
    RunState state = RunState::Closed;
};

thread_local bool looking = false;

RunState StateOf(int slot) {
    if (!PjtStartGet(slot)) return RunState::Stopped;
    return PjtPauseSxGet(slot) ? RunState::Paused : RunState::Running;
}

/// What is in the slot now. The name of a free slot belongs to no open project.
Seen Now(int slot) {
    const std::string name = ProjectNameGet(slot);
    if (name.empty() || ProjectNameToID(name.c_str()) != slot) return {};
    return {name, StateOf(slot)};
}

void Follow(Seen& seen, int slot, bool byCommand) {
    Seen now = Now(slot);
    if (now.project == seen.project && now.state == seen.state) return;
    if (!seen.project.empty() && now.project != seen.project) {
        EventAdd(RunStateEvent{seen.project, RunState::Closed, byCommand});
    }
    if (!now.project.empty()) EventAdd(RunStateEvent{now.project, now.state, byCommand});
    seen = std::move(now);
}

}  // namespace

void RunStatesLook(bool byCommand) {
    // Never destroyed: there may be a look while the process ends.
    static auto& seen = *new std::array<Seen, SlotCount>;
    looking = true;
    try {
        for (int slot = 0; slot < SlotCount; ++slot)
            Follow(seen[static_cast<std::size_t>(slot)], slot, byCommand);
    } catch (const std::exception&) {
        // No memory for a name: the next look sees the change.
    }
    looking = false;
}

bool RunStatesLooking() {
    return looking;
}

}  // namespace vorn
