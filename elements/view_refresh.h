// The waits with which commands let the engine's view catch up. Both are spent inside the dispatcher's lock.

#pragma once

namespace vorn {

/// Waits before a placement until the view of slot `pjtnb` is idle, at most 300 times 1 ms; the placement
/// goes ahead in any case.
void GuiRefWait(int pjtnb);

/// Tells the engine that the project's structure or layout changed, and waits 300 ms.
void PjtRefWait(int pjtnb);

}  // namespace vorn
