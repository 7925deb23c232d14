#include "commands/run_steps.h"

#include "engine/vorn_core.h"

namespace vorn {

void RunStart(int slot) {
    ProjectAllCacheInToRun(slot, 0);
    PjtStartSet(slot, true);
    ProjectControllerRun();
}

void RunPauseToggle(int slot) {
    PjtPauseSxSet(slot, !PjtPauseSxGet(slot));
}

void RunStep(int slot) {
    StepSxSet(slot, true);
}

void RunStop(int slot) {
    PjtStartSet(slot, false);
    PjtPauseSxSet(slot, false);
}

void RunStopToClose(int slot) {
    if (PjtStartGet(slot)) PjtStartSet(slot, false);
}

}  // namespace vorn
