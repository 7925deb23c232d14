#include "host/end_signals.h"

#include <windows.h>

namespace {

HANDLE asked = nullptr;

/// Called by the system on a thread of its own.
BOOL WINAPI OnControl(DWORD kind) {
    SetEvent(asked);
    // Where the console goes, the process ends with this call: the main thread comes first, within the
    // seconds that the system grants.
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

void EndSignalsHold() {
    asked = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    SetConsoleCtrlHandler(OnControl, TRUE);
}

bool EndAsked(std::chrono::milliseconds wait) {
    return WaitForSingleObject(asked, static_cast<DWORD>(wait.count())) == WAIT_OBJECT_0;
}
