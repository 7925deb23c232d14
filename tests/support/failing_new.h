// Memory that runs out where a test wants it to.

#pragma once

/// Lets `failing` of this thread's `new`s, from the `count`-th from now on (0 for the next one), throw
/// `std::bad_alloc`; those behind them again succeed. A negative `count` lets all succeed.
void FailNew(int count, int failing = 1);

/// True when a `new` has failed since the last `FailNew`.
bool NewFailed();
