// Memory that runs out where a test wants it to.

#pragma once

/// Lets this thread's `count`-th `new` from now on (0 for the next one) throw `std::bad_alloc`, and those
/// behind it again succeed. A negative number lets all succeed.
void FailNew(int count);

/// True when a `new` has failed since the last `FailNew`.
bool NewFailed();
