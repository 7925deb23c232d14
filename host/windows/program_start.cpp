#include "host/program_start.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/windows/wide_text.h"

namespace {

constexpr std::size_t OutputBufferBytes = 65536;

/// What the console took texts for before; it outlives the program. 0 without a console.
UINT codePageBefore = 0;

void ConsoleRestore() {
    if (codePageBefore != 0) SetConsoleOutputCP(codePageBefore);
}

}  // namespace

char** ProgramStart(int& count, char** arguments) {
    codePageBefore = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit(ConsoleRestore);
    // Else each byte would go to the console by itself, and no character of several would be shown.
    std::setvbuf(stdout, nullptr, _IOFBF, OutputBufferBytes);
    for (std::FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);

    // Not the words of `main`: some run-times put the names of files in the place of a `*`.
    int words = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &words);
    if (wide == nullptr) return arguments;
    count = words;
    static std::vector<std::string> texts(static_cast<std::size_t>(count));
    static std::vector<char*> starts(texts.size() + 1);
    for (std::size_t index = 0; index < texts.size(); ++index) {
        texts[index] = vorn::NarrowFromWide(wide[index], CP_UTF8);
        starts[index] = texts[index].data();
    }
    LocalFree(wide);
    return starts.data();
}

void ProgramEnd(int status) {
    ConsoleRestore();
    // Nothing of the libraries is run any more: what the other threads hold would not come free.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::_Exit(status);
}

void EnvironmentSet(const char* name, const char* value) {
    _putenv_s(name, value);
}
