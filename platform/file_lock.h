// Locks between processes, also of several machines that share a file system.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vorn {

enum class LockResult {
    Taken,
    Held,       ///< by another process, or by another lock of this one
    Impossible  ///< the file cannot be made, such as in a folder that is not there
};

/// A lock that a file stands for. It is free again when its process ends, however it ends. To be used by one
/// thread at a time.
class FileLock {
  public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Takes the lock of the file `path`, UTF-8 with `/`, which is made where it is not there, and writes
    /// `owner` into it, a short text that tells a person who has it. Where it is held, `holder` becomes what
    /// its holder wrote. This lock has none yet.
    LockResult Take(const std::string& path, std::string_view owner, std::string& holder);
    /// Gives the lock back and removes its file. Does nothing where none was taken.
    void Release();
    bool IsTaken() const { return handle_ != None; }

  private:
    static constexpr std::intptr_t None = -1;

    std::intptr_t handle_ = None;
    std::string path_;
};

/// What names this process to people: its number and the machine's name.
std::string ProcessTitle();

}  // namespace vorn
