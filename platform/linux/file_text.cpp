#include "platform/file_text.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>

namespace vorn {

namespace {

constexpr const char* FreshEnding = ".new.";

std::string FolderOf(const std::string& path) {
    const std::size_t end = path.rfind('/');
    return end == std::string::npos ? "." : path.substr(0, end + 1);
}

/// An open file, closed at the end of its scope.
class FileHandle {
  public:
    FileHandle(const char* path, int flags) : handle_(open(path, flags | O_CLOEXEC, 0644)) {}
    ~FileHandle() {
        if (handle_ >= 0) close(handle_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    int Get() const { return handle_; }

  private:
    int handle_;
};

/// Calls `move`, a read or a write of the bytes from an offset on, until `size` bytes have gone or no more
/// go, and gives how many went. False on an error.
template <typename Move>
bool MoveAll(std::size_t size, std::size_t& done, Move move) {
    for (done = 0; done < size;) {
        const ssize_t count = move(done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

bool WriteAll(const std::string& path, std::string_view content) {
    // Anything of that name is in the way, and a link or a pipe would lead elsewhere.
    unlink(path.c_str());
    const FileHandle file(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    std::size_t done = 0;
    const auto write = [&](std::size_t at) {
        return ::write(file.Get(), content.data() + at, content.size() - at);
    };
    return file.Get() >= 0 && MoveAll(content.size(), done, write) && done == content.size() &&
           fsync(file.Get()) == 0;
}

/// Removes what an earlier process began to put in the place of `path` and did not finish.
void LeftoversRemove(const std::string& path) {
    const std::filesystem::path file(path);
    const std::string beginning = file.filename().string() + FreshEnding;
    std::error_code error;
    std::filesystem::directory_iterator entry(FolderOf(path), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(beginning)) continue;
        pid_t process = 0;
        std::from_chars(name.data() + beginning.size(), name.data() + name.size(), process);
        if (process > 0 && kill(process, 0) != 0 && errno == ESRCH) unlink(entry->path().c_str());
    }
}

/// Makes what was renamed last through a crash of the machine. A file system that cannot is taken as it is.
void FolderFlush(const std::string& path) {
    const FileHandle handle(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY);
    if (handle.Get() >= 0) fsync(handle.Get());
}

}  // namespace

bool FolderMake(const std::string& path) {
    std::error_code error;
    const bool made = std::filesystem::create_directories(path, error);
    if (error) return false;
    // The entries of new folders stand in those above them.
    for (std::string above = path; made && above.find('/') != std::string::npos;) {
        above.resize(above.find_last_not_of('/') + 1);
        FolderFlush(above);
        above = FolderOf(above);
        if (above == "." || above == "/") break;
    }
    return true;
}

bool FileRead(const std::string& path, std::size_t limit, std::string& content) {
    content.clear();
    // Without waiting: a pipe of that name would hold the open call until somebody writes to it.
    const FileHandle file(path.c_str(), O_RDONLY | O_NONBLOCK);
    struct stat facts {};
    if (file.Get() < 0 || fstat(file.Get(), &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
    const auto size = static_cast<std::size_t>(facts.st_size);
    if (size > limit) return false;
    content.resize(size);
    std::size_t done = 0;
    const bool read = MoveAll(
        size, done, [&](std::size_t at) { return ::read(file.Get(), content.data() + at, size - at); });
    content.resize(read ? done : 0);
    return read;
}

bool FileReplace(const std::string& path, std::string_view content) {
    const std::string fresh = path + FreshEnding + std::to_string(getpid());
    if (!WriteAll(fresh, content) || rename(fresh.c_str(), path.c_str()) != 0) {
        unlink(fresh.c_str());
        return false;
    }
    FolderFlush(path);
    LeftoversRemove(path);
    return true;
}

}  // namespace vorn
