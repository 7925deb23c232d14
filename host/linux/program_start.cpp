#include "host/program_start.h"

#include <clocale>
#include <cstdlib>

char** ProgramStart(char** arguments) {
    // The system's code page is the one of the user's language; numbers keep their decimal point.
    std::setlocale(LC_CTYPE, "");
    return arguments;
}

void EnvironmentSet(const char* name, const char* value) {
    setenv(name, value, 1);
}
