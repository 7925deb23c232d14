#include "platform/file_lock.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vorn {

namespace {

constexpr std::size_t HolderBytesAtMost = 256;

/// True while the open file is the one that the path names: a holder removes it when it gives it back.
bool StillNamed(int file, const std::string& path) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

/// The open file, negative where it cannot be made. That of another user's server may be one to read only: it
/// can be locked all the same.
int Opened(const std::string& path) {
    constexpr int Always = O_CLOEXEC | O_NOFOLLOW;
    const int file = open(path.c_str(), O_RDWR | O_CREAT | Always, 0666);
    return file < 0 && errno == EACCES ? open(path.c_str(), O_RDONLY | Always) : file;
}

std::string HolderRead(int file) {
    char text[HolderBytesAtMost];
    const ssize_t bytes = pread(file, text, sizeof text, 0);
    return {text, bytes > 0 ? static_cast<std::size_t>(bytes) : 0};
}

bool OwnerWrite(int file, std::string_view owner) {
    return ftruncate(file, 0) == 0 &&
           pwrite(file, owner.data(), owner.size(), 0) == static_cast<ssize_t>(owner.size());
}

}  // namespace

LockResult FileLock::Take(const std::string& path, std::string_view owner, std::string& holder) {
    path_ = path;
    for (;;) {
        const int file = Opened(path);
        if (file < 0) return LockResult::Impossible;
        if (flock(file, LOCK_EX | LOCK_NB) != 0) {
            const bool held = errno == EWOULDBLOCK;
            if (held) holder = HolderRead(file);
            close(file);
            return held ? LockResult::Held : LockResult::Impossible;
        }
        if (StillNamed(file, path)) {
            OwnerWrite(file, owner);  // for people only: the lock holds without it
            handle_ = file;
            return LockResult::Taken;
        }
        close(file);
    }
}

void FileLock::Release() {
    if (handle_ == None) return;
    unlink(path_.c_str());
    close(static_cast<int>(handle_));
    handle_ = None;
}

std::string ProcessTitle() {
    char machine[HOST_NAME_MAX + 1] = {};
    gethostname(machine, sizeof machine - 1);
    return "process " + std::to_string(getpid()) + " on " + machine;
}

}  // namespace vorn
