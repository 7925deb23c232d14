// Whether a file is its owner's alone.

#pragma once

#include <string>

/// True when the file's mode lets its group or all others read, write or run it. False for a file that is not
/// there, and on a system whose files have no such mode.
bool OthersMayOpen(const std::string& path);
