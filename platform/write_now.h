// Writing to the program's standard streams without ever waiting for who reads them.

#pragma once

#include <cstddef>
#include <string_view>

namespace vorn {

enum class StandardStream { Output, Error };

/// Writes as much of `text` as the stream takes at once, and gives how many bytes that were: fewer than all
/// where it is a pipe or a terminal that nobody reads. The next text of that stream must begin with the rest.
/// What can never be written, since the reader is gone or the disk is full, counts as written. The mode of
/// the stream, which other processes may share, stays as it is. Writes of several threads to one stream must
/// not run at once.
std::size_t WriteNow(StandardStream stream, std::string_view text);

}  // namespace vorn
