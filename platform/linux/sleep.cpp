#include "platform/sleep.h"

#include <chrono>
#include <thread>

namespace vorn {

void SleepMilliseconds(int milliseconds) {
    SleepCount(milliseconds);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace vorn
