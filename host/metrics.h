// The port of the host program's counters.

#pragma once

#include <string>

#include "host/console_address.h"

/// The port where none is asked for.
inline constexpr int MetricsPort = 9360;

/// Serves `CountersText` for `GET /metrics` at `address`, once in a process, on threads of its own; port 0
/// stands for `MetricsPort`. Returns what to read, `http://ADDRESS:PORT/metrics`, or the empty text, with
/// `fault` giving the reason, where the port is not free.
std::string MetricsStart(const ConsoleAddress& address, std::string& fault);
