#include "platform/sleep.h"

namespace vorn {

namespace {

thread_local std::chrono::milliseconds slept{0};

}  // namespace

std::chrono::milliseconds SleptByThread() {
    return slept;
}

void SleepCount(int milliseconds) {
    if (milliseconds > 0) slept += std::chrono::milliseconds(milliseconds);
}

}  // namespace vorn
