#include "platform/file_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vorn {

namespace {

/// An open file, closed at the end of its scope.
class FileHandle {
  public:
    explicit FileHandle(int handle) : handle_(handle) {}
    ~FileHandle() {
        if (handle_ >= 0) close(handle_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    int Get() const { return handle_; }

  private:
    int handle_;
};

/// Reads an open file. 0, or why it cannot be taken.
int ReadWhole(int file, std::size_t limit, std::string& content) {
    struct stat facts {};
    if (file < 0 || fstat(file, &facts) != 0) return errno;
    if (!S_ISREG(facts.st_mode)) return S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
    const auto size = static_cast<std::size_t>(facts.st_size);
    if (size > limit) return EFBIG;
    content.resize(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = read(file, content.data() + done, size - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    content.resize(done);
    return 0;
}

}  // namespace

bool FileRead(const std::string& path, std::size_t limit, std::string& content, std::error_code& fault) {
    content.clear();
    // Without waiting: a pipe of that name would hold the open call until somebody writes to it.
    const FileHandle file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const int reason = ReadWhole(file.Get(), limit, content);
    fault = reason == 0 ? std::error_code() : std::error_code(reason, std::system_category());
    if (fault) content.clear();
    return !fault;
}

}  // namespace vorn
