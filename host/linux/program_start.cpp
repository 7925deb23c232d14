#include "host/program_start.h"

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>

namespace {

/// Where whoever started the program closed a standard stream, the next socket or file would take its number,
/// and lines for people would go into it. Opened for reading alone: what is written there fails as before.
void StandardStreamsFill() {
    int descriptor = -1;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) close(descriptor);
}

}  // namespace

char** ProgramStart(int& /*count*/, char** arguments) {
    StandardStreamsFill();
    // The system's code page is the one of the user's language; numbers keep their decimal point.
    std::setlocale(LC_CTYPE, "");
    return arguments;
}

void ProgramEnd(int status) {
    std::_Exit(status);
}

void EnvironmentSet(const char* name, const char* value) {
    setenv(name, value, 1);
}
