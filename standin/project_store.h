// The stored projects: `../AlgProject/NAME/`, relative to the working directory. The engine lock is held.

#pragma once

#include <string_view>

#include "standin/project.h"

namespace standin {

/// Stores the whole project, so that a crash at any moment leaves the old or the new one. False, with a line
/// on standard error, when that fails; the old one then stays.
bool StoreWrite(const Project& project);

/// True when a whole, undamaged project of that name is stored. A name that breaks the rule for project names
/// (letters and digits only) is none, and no path is built from it. A damaged or foreign file is told of on
/// standard error and left as it is.
bool StoreHas(std::string_view name);

/// Brings the stored content into an open project, in the place of what it holds. False, with the project as
/// it was, when there is none.
bool StoreRead(Project& project);

}  // namespace standin
