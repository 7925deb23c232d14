#include "platform/file_steps.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>

namespace vorn {

namespace {

/// Tells the reason of a call that failed, and gives whether it worked.
bool Worked(bool worked, std::error_code& fault) {
    if (!worked) fault.assign(errno, std::system_category());
    return worked;
}

bool MakeFolder(const std::string& path, bool& made, std::error_code& fault) {
    made = mkdir(path.c_str(), 0777) == 0;
    if (made) return true;
    if (errno != EEXIST) return Worked(false, fault);
    struct stat facts {};
    const bool folder = stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    if (!folder) errno = ENOTDIR;
    return Worked(folder, fault);
}

// The C++ library's walk over a folder would end the process where there is no memory.
std::vector<std::string> Names(const std::string& path) {
    struct Closing {
        void operator()(DIR* folder) const { closedir(folder); }
    };
    std::vector<std::string> names;
    const std::unique_ptr<DIR, Closing> folder(opendir(path.c_str()));
    if (folder == nullptr) return names;
    while (const dirent* entry = readdir(folder.get())) names.emplace_back(entry->d_name);
    return names;
}

FileNumber Make(const std::string& path, std::error_code& fault) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    Worked(file >= 0, fault);
    return file;
}

std::size_t Write(FileNumber file, std::string_view bytes, std::error_code& fault) {
    ssize_t count = 0;
    do {
        count = write(static_cast<int>(file), bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    return Worked(count > 0, fault) ? static_cast<std::size_t>(count) : 0;
}

bool Flush(FileNumber file, std::error_code& fault) {
    return Worked(fsync(static_cast<int>(file)) == 0, fault);
}

void Close(FileNumber file) {
    close(static_cast<int>(file));
}

bool Rename(const std::string& from, const std::string& to, std::error_code& fault) {
    return Worked(rename(from.c_str(), to.c_str()) == 0, fault);
}

bool FlushFolder(const std::string& path, std::error_code& fault) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return Worked(false, fault);
    const bool flushed = Worked(fsync(folder) == 0 || errno == EINVAL, fault);
    close(folder);
    return flushed;
}

void Remove(const std::string& path) {
    unlink(path.c_str());
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
    return static_cast<unsigned long>(getpid());
}

bool ProcessIsGone(unsigned long process) {
    if (process > static_cast<unsigned long>(std::numeric_limits<pid_t>::max())) return true;
    return kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
}

}  // namespace vorn
