// The sleep of the tests: it takes no time, joins the trace as `sleep 300`, and can run a script.

#pragma once

#include <functional>

/// Runs `run` at each sleep, with its milliseconds; an empty function ends that.
void AtSleep(std::function<void(int milliseconds)> run);
