#include "platform/file_path.h"

#include <windows.h>

#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

/// The full path of a folder, whose own path ends in a separator: so it is none of a device, whatever it is
/// called.
std::wstring FullFolder(const std::wstring& folder) {
    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetFullPathNameW(folder.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool fits = length < full.size();
        full.resize(length);  // where it does not fit, that is the room that it takes
        if (fits) return full;
    }
}

}  // namespace

// The standard library's paths, where there is no memory, may give a wrong one in place of a fault.
std::filesystem::path FilePath(const std::string& path) {
    const std::wstring wide = WideFromUtf8(path);
    if (wide.starts_with(LR"(\\?\)")) return wide;
    const std::size_t name = wide.find_last_of(LR"(/\:)") + 1;
    const std::wstring full = FullFolder(wide.substr(0, name) + LR"(.\)") + wide.substr(name);
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

}  // namespace vorn
