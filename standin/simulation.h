// The running of started projects. It is no simulator: it moves the values that a person would watch, always
// in the same way, so that clients have something live to read.

#pragma once

#include "standin/project.h"

namespace standin {

/// Moves the live values of a project one step on, whatever its flags: `GStep` counts, `GTemp` goes towards
/// -10, `COP` follows it, `WAll` grows by the power of all modules, a room's inside goes towards its outside
/// and each `BKT_TEMP` towards `GTemp`. The lock is held.
void SimulationStep(Project& project);

/// Begins a run: the project counts as started, with no step made and no start refused. The lock is held.
void SimulationBegin(Project& project);

/// Tells the simulation's thread that flags or step requests changed. There is one thread for the process,
/// started by the first call that finds something to step; it steps each started and not paused project every
/// 100 ms, and any project once for each step request. The lock is held.
void SimulationWake();

}  // namespace standin
