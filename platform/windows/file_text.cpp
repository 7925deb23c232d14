#include "platform/file_text.h"

#include <windows.h>

#include <algorithm>

#include "platform/file_path.h"

namespace vorn {

namespace {

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// A file that is open to be read, closed at the end of its scope.
class FileHandle {
  public:
    explicit FileHandle(const std::filesystem::path& path)
        : handle_(::CreateFileW(path.c_str(), GENERIC_READ, ShareAll, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~FileHandle() {
        if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    HANDLE Get() const { return handle_; }
    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    /// True for a file of a disk, and not for a device or a pipe of that name.
    bool OnDisk() const { return GetFileType(handle_) == FILE_TYPE_DISK; }

  private:
    HANDLE handle_;
};

/// Bytes that one call of the system moves.
DWORD PieceOf(std::size_t bytes) {
    return static_cast<DWORD>(std::min<std::size_t>(bytes, std::size_t{1} << 30U));
}

/// Reads an open file. False, with the system's last error, where it cannot be taken.
bool ReadWhole(const FileHandle& file, std::size_t limit, std::string& content) {
    LARGE_INTEGER size{};
    if (!file.IsOpen()) return false;
    if (!file.OnDisk()) SetLastError(ERROR_INVALID_HANDLE);
    if (!file.OnDisk() || !GetFileSizeEx(file.Get(), &size)) return false;
    if (static_cast<unsigned long long>(size.QuadPart) > limit) {
        SetLastError(ERROR_FILE_TOO_LARGE);
        return false;
    }
    content.resize(static_cast<std::size_t>(size.QuadPart));
    std::size_t done = 0;
    for (DWORD read = 1; read > 0 && done < content.size(); done += read) {
        const DWORD piece = PieceOf(content.size() - done);
        if (!::ReadFile(file.Get(), content.data() + done, piece, &read, nullptr)) return false;
    }
    content.resize(done);
    return true;
}

}  // namespace

bool FileRead(const std::string& path, std::size_t limit, std::string& content, std::error_code& fault) {
    content.clear();
    fault.clear();
    const FileHandle file(FilePath(path));
    if (ReadWhole(file, limit, content)) return true;
    fault.assign(static_cast<int>(GetLastError()), std::system_category());
    content.clear();
    return false;
}

}  // namespace vorn
