// The steps of writing a file in tests: the system's own, but for the one that is to go wrong.

#pragma once

#include <functional>

/// How a step goes wrong. A write takes half of its bytes first, so that half a file stands.
enum class StepFault {
    IoError,     ///< it and those behind it fail as on a broken disk
    DiskFull,    ///< it and those behind it fail as on a full disk
    ShortWrite,  ///< a write takes half its bytes and has not failed; no other step is changed
    Stop,        ///< `stopped` is called, which does not come back
};

/// From now on counts the steps, from 0; step `number` meets the fault.
void FileFaultSet(int number, StepFault fault, std::function<void()> stopped = {});

/// No step meets a fault any more. Gives how many steps were made since `FileFaultSet`.
int FileFaultClear();
