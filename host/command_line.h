// How both programs read their command lines.

#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>

/// Takes an option's value; gives the fault of one that cannot be taken, else the empty text.
using ValueTaker = std::function<std::string(const std::string& value)>;

/// An option that needs a value, as `--file FILE`. `needed` names the value in the help and in the fault of a
/// line that leaves it out.
CLI::Option* AddValueOption(CLI::App& app, const std::string& name, const std::string& needed,
                            const std::string& text, const ValueTaker& take);

/// A taker of whole numbers from `least` to `most`.
ValueTaker NumberTaker(int least, int most, int& number);

/// Gives `app`, named after its program, the options `--help` and `--version` and reads the command line with
/// it. Nothing when the program is to run; otherwise the status to end with: 0 when help or version was
/// printed, 2 when the line cannot be read, which standard error then tells.
std::optional<int> CommandLineRead(CLI::App& app, int count, const char* const* arguments);
