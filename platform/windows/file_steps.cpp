#include "platform/file_steps.h"

#include <windows.h>

#include <algorithm>

#include "platform/file_path.h"
#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

/// Another program, such as one that looks for viruses, may hold a file for a moment.
constexpr int RenameAttempts = 50;
constexpr DWORD RenameRestMilliseconds = 20;

/// Tells the reason of a call that failed, and gives whether it worked.
bool Worked(bool worked, std::error_code& fault) {
    if (!worked) fault.assign(static_cast<int>(GetLastError()), std::system_category());
    return worked;
}

HANDLE HandleOf(FileNumber file) {
    return reinterpret_cast<HANDLE>(file);
}

bool IsFolder(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool MakeFolder(const std::string& path, bool& made, std::error_code& fault) {
    const std::filesystem::path full = FilePath(path);
    made = CreateDirectoryW(full.c_str(), nullptr) != FALSE;
    const DWORD reason = GetLastError();
    if (made || (reason == ERROR_ALREADY_EXISTS && IsFolder(full))) return true;
    SetLastError(reason);
    return Worked(false, fault);
}

std::vector<std::string> Names(const std::string& path) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((FilePath(path) / L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        names.push_back(NarrowFromWide(found.cFileName, CP_UTF8));
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

FileNumber Make(const std::string& path, std::error_code& fault) {
    const HANDLE file = CreateFileW(FilePath(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_FLAG_WRITE_THROUGH, nullptr);
    Worked(file != INVALID_HANDLE_VALUE, fault);
    return reinterpret_cast<FileNumber>(file);
}

std::size_t Write(FileNumber file, std::string_view bytes, std::error_code& fault) {
    constexpr std::size_t OneCall = std::size_t{1} << 30U;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), OneCall));
    DWORD written = 0;
    return Worked(WriteFile(HandleOf(file), bytes.data(), size, &written, nullptr), fault) ? written : 0;
}

bool Flush(FileNumber file, std::error_code& fault) {
    return Worked(FlushFileBuffers(HandleOf(file)), fault);
}

void Close(FileNumber file) {
    CloseHandle(HandleOf(file));
}

bool Rename(const std::string& from, const std::string& to, std::error_code& fault) {
    constexpr DWORD Flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    const std::filesystem::path fresh = FilePath(from);
    const std::filesystem::path path = FilePath(to);
    for (int attempt = 1;; ++attempt) {
        if (MoveFileExW(fresh.c_str(), path.c_str(), Flags)) return true;
        const DWORD reason = GetLastError();
        const bool held = reason == ERROR_ACCESS_DENIED || reason == ERROR_SHARING_VIOLATION;
        if (!held || attempt == RenameAttempts || IsFolder(path)) {
            SetLastError(reason);
            return Worked(false, fault);
        }
        Sleep(RenameRestMilliseconds);
    }
}

/// The renaming is written through.
bool FlushFolder(const std::string& /*path*/, std::error_code& /*fault*/) {
    return true;
}

void Remove(const std::string& path) {
    DeleteFileW(FilePath(path).c_str());
}

}  // namespace

const FileSteps SystemFileSteps{
    .makeFolder = MakeFolder,
    .names = Names,
    .make = Make,
    .write = Write,
    .flush = Flush,
    .close = Close,
    .rename = Rename,
    .flushFolder = FlushFolder,
    .remove = Remove,
};

unsigned long ThisProcess() {
    return GetCurrentProcessId();
}

bool ProcessIsGone(unsigned long number) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, number);
    if (process == nullptr) return GetLastError() == ERROR_INVALID_PARAMETER;
    const bool gone = WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    ::CloseHandle(process);
    return gone;
}

}  // namespace vorn
