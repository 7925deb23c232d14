// The time of a run: its step's length, its rate and its end, which clients set in variables of the project.
// The engine lock is held in each function.

#pragma once

#include "standin/project.h"

namespace standin {

inline constexpr double UsualRate = 1.0;  ///< simulated over real time; 0 is as fast as it goes

/// Simulated seconds of the project's next step: `GStepSeconds`, within its limits.
double StepSecondsOf(const Project& project);

/// Real seconds from one step of a run to the next: 0 where it goes as fast as it can.
double BeatSecondsOf(const Project& project);

/// Stores a real variable of the project as a client or the script sends it: a number that is not finite as
/// 0, one out of the variable's limits as the nearest within them. The row is there.
void VariableStore(Project& project, int row, double value);

/// Begins the time of a run at 0.
void TimeBegin(Project& project);

/// Counts the seconds of a step that was made in `GTime`. The run pauses where it has come to `GUntil`.
void TimeAdvance(Project& project, double seconds);

}  // namespace standin
