// The paths of this library as the system takes them.

#pragma once

#include <string>

namespace vorn {

/// The path in full and in the form that the system takes as it is: of any length, and also with a name that
/// stands for a device elsewhere, such as that of a project CON.
std::wstring FullPath(const std::string& path);

}  // namespace vorn
