// Named variables of a project, for the commands that show live values.

#pragma once

#include <string>

namespace vorn {

/// The text of the variable `rest` of the project in slot `pjtnb`: its name is the project's name, then
/// `rest`, which begins with `_`. A name that leads to no variable gives the reply that says so.
std::string ProjectVariableText(int pjtnb, const std::string& rest);

}  // namespace vorn
