// Names of projects and where a project's files lie: what commands and the engine agree on.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// Characters that a project name has at most.
inline constexpr std::size_t ProjectNameLimit = 64;

/// Gives the upper-cased name. False, with `upper` untouched, for a name that holds anything but ASCII
/// letters and digits or that is too long. The empty name passes.
bool ProjectNameUpper(std::string_view name, std::string& upper);

/// The folder of a project's files, relative to the working directory, with `/` at its end; their names
/// begin with the project's. `name` is taken as it is: it is a project's, in upper case.
std::string ProjectFolderPath(std::string_view name);

}  // namespace vorn
