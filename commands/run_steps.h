// The steps of run control that the project commands and the verbs of `Put` share. `slot` is an open project.

#pragma once

namespace vorn {

/// Starts a stopped project from its cache set 0.
void RunStart(int slot);
/// Pauses, or goes on. Does not ask whether the project is started.
void RunPauseToggle(int slot);
/// Asks for one step, in whatever state the project is.
void RunStep(int slot);
/// Stops, and takes back a pause.
void RunStop(int slot);
/// Stops a started project that is about to be closed. A pause stays.
void RunStopToClose(int slot);

}  // namespace vorn
