// The running of started projects, on a thread of its own.

#pragma once

#include "standin/project.h"

namespace standin {

/// Begins a run: the project counts as started, with no step made and no start refused. The lock is held.
void SimulationBegin(Project& project);

/// Tells the simulation's thread that flags or step requests changed. There is one thread for the process,
/// started by the first call that finds something to step; it steps each started and not paused project every
/// 100 ms, and any project once for each step request. The lock is held.
void SimulationWake();

}  // namespace standin
