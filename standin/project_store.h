// The stored projects: `../AlgProject/NAME/`, relative to the working directory. The engine lock is held.

#pragma once

#include "standin/project.h"

namespace standin {

/// Stores the whole project, so that a crash at any moment leaves the old or the new one. False, with a line
/// on standard error that tells reason and path, when that fails; the old one then stays, or where only the
/// last flush failed the new one. A damaged or foreign file that is in the way is kept under another name.
bool StoreWrite(Project& project);

/// Brings the stored content into an open project, in the place of what it holds. False, with the project as
/// it was, when no whole, undamaged one of its name is stored. A file that cannot be taken is told on
/// standard error and left as it is. A name that breaks the rule for project names (letters and digits only)
/// has none, and no path is built from it.
bool StoreRead(Project& project);

}  // namespace standin
