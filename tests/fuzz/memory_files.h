// Files and stored projects of the fuzz fronts, kept in memory: `memory_files.cpp` takes the place of the
// system's files, of the project store and of its locks.

#pragma once

/// Removes all files.
void FilesForget();
