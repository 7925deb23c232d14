// Writing to the program's standard streams without ever waiting for who reads them.

#pragma once

#include <cstddef>
#include <string_view>

namespace vorn {

enum class StandardStream { Output, Error };

/// Writes as much of `text` as the stream takes at once, and gives how many bytes that were: fewer than all
/// where it is a pipe or a terminal that nobody reads. What can never be written, since the reader is gone or
/// the disk is full, counts as written. Writes of several threads must not run at once.
std::size_t WriteNow(StandardStream stream, std::string_view text);

}  // namespace vorn
