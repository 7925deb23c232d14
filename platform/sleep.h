// Sleeping, and how long a thread has slept. Tests put a sleep of their own in the place of this one.

#pragma once

#include <chrono>

namespace vorn {

/// Lets the calling thread rest for that many milliseconds and counts them; nothing for zero and below.
void SleepMilliseconds(int milliseconds);

/// The rests that the calling thread was asked to take since it began.
std::chrono::milliseconds SleptByThread();

/// Adds a rest of the calling thread to that sum. Called by `SleepMilliseconds` alone.
void SleepCount(int milliseconds);

}  // namespace vorn
