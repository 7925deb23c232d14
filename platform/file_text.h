// Whole files as texts. Paths are UTF-8 with `/`. Where a call fails, `fault` tells the system's reason; else
// it is cleared.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace vorn {

/// Makes a folder and those above it that are missing, and sees to it that they outlive a crash of the
/// machine. False when that fails; a folder that is there is fine.
bool FolderMake(const std::string& path, std::error_code& fault);

/// Reads a regular file whole, byte for byte. False, with an empty `content`, when it cannot be read and when
/// it has more than `limit` bytes. Of a file that shrinks meanwhile, what is left.
bool FileRead(const std::string& path, std::size_t limit, std::string& content, std::error_code& fault);

/// Puts a file of that content in the place of `path`, whose folder is there: it is written beside it, as
/// `path` with `.new.` and the number of this process behind it, flushed to the disk and renamed, so that a
/// crash at any moment leaves the old file or the new one. What processes that are gone left half written is
/// removed. False when that fails: the old file is as it was, but where only the folder could not be flushed
/// the new one stands and might not outlive a crash of the machine. One call at a time for one path.
bool FileReplace(const std::string& path, std::string_view content, std::error_code& fault);

}  // namespace vorn
