// Where the files of a project lie.

#pragma once

#include <string>
#include <string_view>

namespace standin {

/// `../AlgProject/NAME/`, relative to the working directory, with the name in upper case. Empty for a name
/// that no project can bear, anything but up to 64 ASCII letters and digits: no path is built from such a
/// name.
std::string ProjectFolder(std::string_view name);

/// The path of one of the project's files, `../AlgProject/NAME/NAME` with `ending` behind it; empty as above.
std::string ProjectFile(std::string_view name, std::string_view ending);

/// `../AlgProject/NAME.lock`, the file of the project's lock; empty as above.
std::string ProjectLockFile(std::string_view name);

}  // namespace standin
