// The command line of vorn-host.

#pragma once

#include <optional>

#include "host/console_address.h"
#include "host/serial_line.h"

struct Options {
    bool trace = false;  ///< print the calls that cross to the engine
    bool quiet = false;  ///< do not print the exchanges
    std::optional<SerialPort> serial{};
    std::optional<ConsoleAddress> console{ConsoleAddress{}};  ///< where the console listens, if it is wanted
    std::optional<ConsoleAddress> metrics{};  ///< where counters are served, if they are wanted
};

/// Reads the command line. Nothing when the program is to run with `options`; otherwise the status to end
/// with, after help, version or the fault was printed.
std::optional<int> OptionsRead(int count, const char* const* arguments, Options& options);
