#include "platform/file_text.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>

#include "platform/windows/wide_text.h"

namespace vorn {

namespace {

constexpr const wchar_t* FreshEnding = L".new.";
/// Another program, such as one that looks for viruses, may hold a file for a moment.
constexpr int ReplaceAttempts = 50;
constexpr DWORD ReplaceRestMilliseconds = 20;
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The path in full and in the form that the system takes as it is: of any length, and also with a name that
/// stands for a device elsewhere, such as that of a project CON.
std::wstring FullPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    const std::wstring full = (folder / WideFromCodePage(path)).lexically_normal().make_preferred().wstring();
    if (full.starts_with(LR"(\\?\)")) return full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

/// An open file, closed at the end of its scope.
class FileHandle {
  public:
    FileHandle(const std::wstring& path, DWORD access, DWORD share, DWORD disposition, DWORD flags)
        : handle_(::CreateFileW(path.c_str(), access, share, nullptr, disposition, flags, nullptr)) {}
    ~FileHandle() {
        if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    HANDLE Get() const { return handle_; }
    /// True for a file of a disk, and not for a device or a pipe of that name.
    bool OnDisk() const { return handle_ != INVALID_HANDLE_VALUE && GetFileType(handle_) == FILE_TYPE_DISK; }

  private:
    HANDLE handle_;
};

/// Bytes that one call of the system moves.
DWORD PieceOf(std::size_t bytes) {
    return static_cast<DWORD>(std::min<std::size_t>(bytes, std::size_t{1} << 30U));
}

bool WriteAll(const std::wstring& path, std::string_view content) {
    const FileHandle file(path, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_FLAG_WRITE_THROUGH);
    if (!file.OnDisk()) return false;
    while (!content.empty()) {
        DWORD written = 0;
        if (!::WriteFile(file.Get(), content.data(), PieceOf(content.size()), &written, nullptr))
            return false;
        content.remove_prefix(written);
    }
    return ::FlushFileBuffers(file.Get()) != FALSE;
}

/// Puts the fresh file in the place of the old one, in one step.
bool Move(const std::wstring& fresh, const std::wstring& path) {
    for (int attempt = 0; attempt < ReplaceAttempts; ++attempt) {
        if (MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return true;
        const DWORD error = GetLastError();
        if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) return false;
        if ((GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
        Sleep(ReplaceRestMilliseconds);
    }
    return false;
}

/// True for the number of a process that has ended.
bool ProcessGone(DWORD number) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, number);
    if (process == nullptr) return GetLastError() == ERROR_INVALID_PARAMETER;
    const bool gone = WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    ::CloseHandle(process);
    return gone;
}

/// Removes what an earlier process began to put in the place of `path` and did not finish.
void LeftoversRemove(const std::wstring& path) {
    const std::wstring beginning = path + FreshEnding;
    const std::size_t folderEnd = path.rfind(L'\\') + 1;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((beginning + L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring name = path.substr(0, folderEnd) + found.cFileName;
        const DWORD process =
            std::wcstoul(name.c_str() + std::min(beginning.size(), name.size()), nullptr, 10);
        if (process > 0 && ProcessGone(process)) DeleteFileW(name.c_str());
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

bool FolderMakeAt(const std::wstring& path) {
    if (CreateDirectoryW(path.c_str(), nullptr)) return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    }
    const std::size_t above = path.rfind(L'\\');
    return error == ERROR_PATH_NOT_FOUND && above != std::wstring::npos &&
           FolderMakeAt(path.substr(0, above)) && CreateDirectoryW(path.c_str(), nullptr);
}

}  // namespace

bool FolderMake(const std::string& path) {
    std::wstring full = FullPath(path);
    if (full.ends_with(L'\\')) full.pop_back();
    return FolderMakeAt(full);
}

bool FileRead(const std::string& path, std::size_t limit, std::string& content) {
    content.clear();
    const FileHandle file(FullPath(path), GENERIC_READ, ShareAll, OPEN_EXISTING, 0);
    LARGE_INTEGER size{};
    if (!file.OnDisk() || !GetFileSizeEx(file.Get(), &size)) return false;
    if (static_cast<unsigned long long>(size.QuadPart) > limit) return false;
    content.resize(static_cast<std::size_t>(size.QuadPart));
    for (std::size_t done = 0; done < content.size();) {
        DWORD read = 0;
        const bool fine =
            ::ReadFile(file.Get(), content.data() + done, PieceOf(content.size() - done), &read, nullptr);
        done += read;
        if (fine && read > 0) continue;
        content.resize(fine ? done : 0);
        return fine;
    }
    return true;
}

bool FileReplace(const std::string& path, std::string_view content) {
    const std::wstring full = FullPath(path);
    const std::wstring fresh = full + FreshEnding + std::to_wstring(GetCurrentProcessId());
    if (!WriteAll(fresh, content) || !Move(fresh, full)) {
        DeleteFileW(fresh.c_str());
        return false;
    }
    LeftoversRemove(full);
    return true;
}

}  // namespace vorn
