// What the host prints for the person in front of it. Nothing here but `TellFinish` waits for who reads: what
// is not taken at once is kept for `TellRest`, in bounds. Any thread may call.

#pragma once

#include <string_view>

/// Prints whole lines, each with its end, on standard output.
void Tell(std::string_view lines);

/// The same on standard error.
void TellError(std::string_view lines);

/// Prints what went wrong, a text without its line's end, on standard error.
void TellFault(std::string_view fault);

/// Goes on with what was kept.
void TellRest();

/// For the end of the program: prints what was kept while somebody reads it, for seconds at most. What is
/// dropped then from standard output is counted on standard error.
void TellFinish();
