// The path of the program that loaded the library.

#pragma once

#include <filesystem>
#include <string>

namespace vorn {

/// What stands between the names of a path.
#ifdef _WIN32
inline constexpr char PathSeparator = '\\';
#else
inline constexpr char PathSeparator = '/';
#endif

/// The full path of the host process's executable, in the system code page; empty when it cannot be told.
std::string ExecutablePath();

/// The same path, also where the code page lacks characters of it.
std::filesystem::path ExecutableFile();

}  // namespace vorn
