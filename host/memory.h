// How this program's memory goes back to the system. The library changes nothing of its host's process, so
// that this is the program's own affair.

#pragma once

/// Sets the C library up so that large blocks go back to the system when they are freed. Called once, before
/// other threads start.
void MemorySetUp();

/// Gives freed memory back to the system, where the process has grown by some megabytes since the last time.
/// Called from the main loop.
void MemoryGiveBack();

/// Gives all freed memory back that the C library keeps for later requests. Takes milliseconds.
void HeapTrim();
