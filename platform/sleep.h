// Sleeping. Tests put a sleep of their own in the place of this one.

#pragma once

namespace vorn {

/// Lets the calling thread rest for that many milliseconds; nothing for zero and below.
void SleepMilliseconds(int milliseconds);

}  // namespace vorn
