// The directory that this server runs from, by which servers of one installation know each other.

#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// The parent of the directory that holds the executable, with a separator at its end; the whole path where
/// it holds fewer than two separators; empty for a path over 256 bytes. In the system code page. A per-thread
/// text, valid until the next call on that thread.
const char* ServerRootGet();

/// `directory` with each separator replaced by `_`, the form in which directories are compared: a host
/// program /opt/plant/bin/host has the directory text `_opt_plant_`.
std::string DirectoryText(std::string_view directory);

/// True when `text` is `serverDirectory`, a directory text, or begins with it at a directory's boundary.
/// Never for an empty `serverDirectory` or one over 256 bytes.
bool DirectoryHolds(std::string_view serverDirectory, std::string_view text);

}  // namespace vorn
