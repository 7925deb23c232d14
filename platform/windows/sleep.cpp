#include "platform/sleep.h"

#include <windows.h>

#include <mmsystem.h>

namespace vorn {

namespace {

/// The default timer ticks about every 16 ms, and the shortest rest lasts until the next tick: a request of
/// 1 MB, with its 4,096 rests of 1 ms, would take a minute. Rests of this length do not ask for more.
constexpr int LongRestMilliseconds = 200;
constexpr unsigned FineTickMilliseconds = 1;

}  // namespace

void SleepMilliseconds(int milliseconds) {
    if (milliseconds <= 0) return;
    SleepCount(milliseconds);
    const bool fine = milliseconds < LongRestMilliseconds;
    if (fine) timeBeginPeriod(FineTickMilliseconds);
    Sleep(static_cast<DWORD>(milliseconds));
    if (fine) timeEndPeriod(FineTickMilliseconds);
}

}  // namespace vorn
