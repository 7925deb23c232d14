// The steps in which `FileReplace` puts a file in the place of another, each one call of the system. Each
// system tells how it makes them; tests put a layer between that lets a chosen one fail.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vorn {

/// An open file as the system numbers it.
using FileNumber = std::intptr_t;
inline constexpr FileNumber NoFile = -1;

/// A step that fails sets `fault`; one that succeeds leaves it alone.
struct FileSteps {
    /// Makes one folder; `made` is false where it is there already. The folder above it has to be there.
    bool (*makeFolder)(const std::string& path, bool& made, std::error_code& fault);
    /// The names of what stands in a folder; none where it cannot be read.
    std::vector<std::string> (*names)(const std::string& path);
    /// Makes an empty file and opens it for writing. `NoFile` when something bears that name, and on a fault.
    FileNumber (*make)(const std::string& path, std::error_code& fault);
    /// Writes the first of these bytes, which are at least one, and gives how many went; 0 on a fault.
    std::size_t (*write)(FileNumber file, std::string_view bytes, std::error_code& fault);
    /// Brings what was written to the disk.
    bool (*flush)(FileNumber file, std::error_code& fault);
    void (*close)(FileNumber file);
    /// Gives the file `from` the name `to`, in the place of the file that bears it.
    bool (*rename)(const std::string& from, const std::string& to, std::error_code& fault);
    /// Makes the names in a folder outlive a crash of the machine. A file system that cannot is taken as it
    /// is.
    bool (*flushFolder)(const std::string& path, std::error_code& fault);
    /// Removes a file or a link; nothing where there is none.
    void (*remove)(const std::string& path);
};

/// The steps as this system makes them.
extern const FileSteps SystemFileSteps;

/// The steps that are gone by: the system's, but in tests.
const FileSteps& FileStepsInUse();

/// The number of this process, and whether no process of that number is left.
unsigned long ThisProcess();
bool ProcessIsGone(unsigned long process);

}  // namespace vorn
