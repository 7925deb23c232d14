// What a program does first, so that its texts are UTF-8 on each system, and last.

#pragma once

/// Gives the words of the command line, in UTF-8 and as they were written; `count` gets their number. What
/// the program prints is shown by a terminal as UTF-8, and goes into a file or a pipe byte for byte.
char** ProgramStart(int& count, char** arguments);

/// Ends the program at once, around the threads that still run.
[[noreturn]] void ProgramEnd(int status);

/// Sets a variable of this process's environment, for the library in it.
void EnvironmentSet(const char* name, const char* value);
