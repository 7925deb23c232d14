// Counters of the host program for a monitoring system, in the text form that Prometheus reads. They are made
// of what the host knows: the lines of the exchange log that it fetches, and the process itself.

#pragma once

#include <string>
#include <string_view>

#include "host/console.h"

/// The port where none is asked for.
inline constexpr int MetricsPort = 9360;

/// Counts fetched lines of the log, each with its mark (`read` or `write`) and end, in UTF-8. Any thread.
///
/// A line that begins with a command's word is an exchange. All others are counted as fragments: further
/// lines of a reply, and what is left of an exchange where the log, of 20000 bytes, was cut before it was
/// fetched.
void MetricsCount(std::string_view lines);

/// All counters, as `GET /metrics` gives them. At most 64 words have a count of their own; what clients send
/// beyond these counts under the word `other`.
std::string MetricsText();

/// Serves `GET /metrics` at `address`, once in a process, on threads of its own; port 0 stands for
/// `MetricsPort`. Gives what to read, `http://ADDRESS:PORT/metrics`, or the empty text, with `fault` saying
/// why, where the port is not free. Served are only requests whose `Host` is the server's own
/// (`transport/http_rules.h`), the others get 403, and those with a body 400; a head has 5 seconds to come.
std::string MetricsStart(const ConsoleAddress& address, std::string& fault);
