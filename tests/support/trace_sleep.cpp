#include "tests/support/trace_sleep.h"

#include <mutex>

#include "platform/sleep.h"
#include "standin/drawing.h"
#include "standin/trace.h"

namespace {

constexpr int DrawingMilliseconds = 2500;

std::mutex scriptLock;
std::function<void(int)> script;

}  // namespace

void AtSleep(std::function<void(int milliseconds)> run) {
    const std::lock_guard guard(scriptLock);
    script = std::move(run);
}

namespace vorn {

void SleepMilliseconds(int milliseconds) {
    SleepCount(milliseconds);
    standin::TraceLine("sleep " + std::to_string(milliseconds));
    // The engine draws meanwhile.
    if (milliseconds >= DrawingMilliseconds) standin::DrawingFinish();
    std::function<void(int)> run;
    {
        const std::lock_guard guard(scriptLock);
        run = script;
    }
    if (run) run(milliseconds);
}

}  // namespace vorn
