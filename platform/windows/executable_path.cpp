#include "platform/executable_path.h"

#include <windows.h>

#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

/// No path of the system is longer.
constexpr std::size_t PathCharactersAtMost = 32768;

}  // namespace

std::filesystem::path ExecutableFile() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == path.size()) {
        path.resize(PathCharactersAtMost);
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path;
}

std::string ExecutablePath() {
    // A path that the code page cannot tell would be taken for others like it.
    bool lossy = false;
    const std::string narrow = NarrowFromWide(ExecutableFile().native(), CP_ACP, &lossy);
    return lossy ? std::string() : narrow;
}

}  // namespace vorn
