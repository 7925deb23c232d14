// Which open project is this server's alone: servers that share a store keep out of each other's way. The
// engine lock is held.

#pragma once

#include <string_view>

namespace standin {

/// Takes the lock of the project that is about to be opened in `slot`, whose lock is free. False, with a line
/// on standard error that names the holder, while another server has the project open. Makes the folder of
/// the store where there is none. A folder or file that cannot be made does not keep a project from being
/// opened.
bool ProjectLockTake(int slot, std::string_view name);

/// True when the slot's project is locked; else, where its file could not be made before, tries once more.
bool ProjectLockEnsure(int slot, std::string_view name);

/// Gives the slot's lock back; does nothing where it has none.
void ProjectLockRelease(int slot);

}  // namespace standin
