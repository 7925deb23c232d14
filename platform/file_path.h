// The paths of this library as the system takes them.

#pragma once

#include <filesystem>
#include <string>

namespace vorn {

/// `path`, UTF-8 with `/` and relative to the working directory, in the form that the system takes as it is.
/// On Windows that is the path in full: of any length, and also with a name that stands for a device
/// elsewhere, such as that of a project CON.
std::filesystem::path FilePath(const std::string& path);

}  // namespace vorn
