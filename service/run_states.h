// Which projects are open and whether they run, followed from look to look.

#pragma once

namespace vorn {

/// Compares the engine's projects with what they were at the last look and records each change. `byCommand`
/// goes into these records. `DispatchLock` is held. Lets no exception out.
void RunStatesLook(bool byCommand);

/// True on a thread that is inside `RunStatesLook`.
bool RunStatesLooking();

}  // namespace vorn
