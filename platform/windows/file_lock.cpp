#include "platform/file_lock.h"

#include <windows.h>

#include "platform/file_path.h"
#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

constexpr DWORD HolderBytesAtMost = 256;

/// What the holder wrote: others may read the file while it is held, and nothing else.
std::string HolderRead(const std::filesystem::path& path) {
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    char text[HolderBytesAtMost];
    DWORD bytes = 0;
    if (!::ReadFile(file, text, sizeof text, &bytes, nullptr)) bytes = 0;
    ::CloseHandle(file);
    return {text, bytes};
}

}  // namespace

LockResult FileLock::Take(const std::string& path, std::string_view owner, std::string& holder) {
    const std::filesystem::path full = FilePath(path);
    // Nobody else may open it to write, and the system removes it with its only handle.
    const HANDLE file =
        ::CreateFileW(full.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_SHARING_VIOLATION) return LockResult::Impossible;
        holder = HolderRead(full);
        return LockResult::Held;
    }
    DWORD written = 0;
    ::WriteFile(file, owner.data(), static_cast<DWORD>(owner.size()), &written, nullptr);
    handle_ = reinterpret_cast<std::intptr_t>(file);
    path_ = path;
    return LockResult::Taken;
}

void FileLock::Release() {
    if (handle_ == None) return;
    ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
    handle_ = None;
}

std::string ProcessTitle() {
    wchar_t machine[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    if (!::GetComputerNameW(machine, &length)) length = 0;
    return "process " + std::to_string(::GetCurrentProcessId()) + " on " +
           NarrowFromWide(std::wstring_view(machine, length), CP_UTF8);
}

}  // namespace vorn
