// The command line of the host program.

#pragma once

#include <optional>
#include <string>

#include "host/serial_line.h"

struct Options {
    bool help = false;
    bool trace = false;  ///< print the calls that cross to the engine
    bool quiet = false;  ///< do not print the exchanges
    std::optional<SerialPort> serial{};
};

/// Reads the command line. False for one that cannot be read, with `fault` saying why.
bool OptionsRead(int count, char** arguments, Options& options, std::string& fault);

/// What `--help` prints.
extern const char* const HelpText;
