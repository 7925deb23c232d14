// The running of started projects, on a thread of its own.

#pragma once

#include "standin/project.h"

namespace standin {

/// Begins a run: the project counts as started, at time 0, with no step made, no start refused and no value
/// held. The lock is held.
void SimulationBegin(Project& project);

/// Tells the simulation that flags, step requests or the length of a beat changed. It has a few threads for
/// the process, made by the first call that finds something to step. They step each started and not paused
/// project on its own beat, and any project once for each step request, one step of a project at a time. The
/// lock is held.
void SimulationWake();

}  // namespace standin
