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

char** ProgramStart(char** arguments) {
    SetConsoleOutputCP(CP_UTF8);
    for (std::FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);

    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) return arguments;
    static std::vector<std::string> texts;
    static std::vector<char*> words;
    for (int index = 0; index < count; ++index) {
        texts.push_back(vorn::NarrowFromWide(wide[index], CP_UTF8));
    }
    LocalFree(wide);
    for (std::string& text : texts) words.push_back(text.data());
    words.push_back(nullptr);
    return words.data();
}

void EnvironmentSet(const char* name, const char* value) {
    _putenv_s(name, value);
}
