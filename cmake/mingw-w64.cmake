# Builds for 64-bit Windows on a Debian machine. What is built runs under Wine, by scripts/wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH VORN_REPOSITORY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${VORN_REPOSITORY}/scripts/wine)

# Libraries come from the folder that scripts/windows.sh fills, and never from this machine's own.
set(CMAKE_FIND_ROOT_PATH ${VORN_REPOSITORY}/build/windows-libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
