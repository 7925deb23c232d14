// What the host says to the person in front of it. Nothing here waits for who reads: what is not taken at
// once is kept for `TellRest`, in bounds. Any thread may call.

#pragma once

#include <string_view>

/// Says whole lines, each with its end, on standard output.
void Tell(std::string_view lines);

/// Says what went wrong, a text without its line's end, on standard error.
void TellFault(std::string_view fault);

/// Goes on with what was kept. True when nothing is left.
bool TellRest();
