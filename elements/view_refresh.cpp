#include "elements/view_refresh.h"

#include "engine/vorn_core.h"
#include "platform/sleep.h"

namespace vorn {

namespace {

constexpr int BusyWaits = 300;
constexpr int RefreshMilliseconds = 300;

}  // namespace

void GuiRefWait(int pjtnb) {
    for (int waits = 0; GuiRef_Get(pjtnb) && waits < BusyWaits; ++waits) SleepMilliseconds(1);
}

void PjtRefWait(int pjtnb) {
    Pipe_PjtRef(pjtnb);
    SleepMilliseconds(RefreshMilliseconds);
}

}  // namespace vorn
