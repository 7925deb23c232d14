// What the system tells of this process.

#pragma once

#include <cstddef>

/// Bytes of memory that the process has in the machine's main memory; 0 where the system does not tell.
std::size_t ResidentBytes();
