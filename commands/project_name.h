// The rule for names of projects that clients create and open.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// Characters that a project name has at most.
inline constexpr std::size_t ProjectNameLimit = 64;

/// Gives the upper-cased name. False, with `upper` untouched, for a name that holds anything but ASCII
/// letters and digits or that is too long. The empty name passes.
bool ProjectNameUpper(std::string_view name, std::string& upper);

}  // namespace vorn
