#!/usr/bin/env bash
# Builds the library for Windows on a Debian machine.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
libraries=build/windows-libraries

# fetch PACKAGE...: unpacks the sources of Debian packages here. The machine's own package sources are read, and left
# as they are: sources are asked for in a settings folder beside them.
fetch() {
    local place list
    place=$(mktemp -d)
    chmod 755 "$place"
    mkdir -p "$place/parts" "$place/lists/partial"
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*; do
        case "$list" in
            *.sources) sed 's/^Types:.*/Types: deb-src/' "$list" ;;
            *.list) sed -n 's/^deb /deb-src /p' "$list" ;;
        esac >"$place/parts/$(basename "$list")" 2>/dev/null || true
    done
    local settings=(-q -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$place/parts"
        -o "Dir::State::lists=$place/lists" -o APT::Sandbox::User=root)
    # Of the sources that name no source packages it complains; what counts is what comes.
    apt-get "${settings[@]}" update >"$place/log" 2>&1 || true
    apt-get "${settings[@]}" source "$@" >>"$place/log" 2>&1 || { cat "$place/log" >&2 && fail "the sources of $*"; }
    rm -rf "$place"
}

# What the project needs of other people's libraries, from their Debian source packages.
libraries_make() {
    local stamp
    stamp="$(dpkg-query -W libcpp-httplib-dev liblua5.4-dev libgtest-dev rapidjson-dev libcli11-dev libutfcpp-dev g++-mingw-w64-x86-64-posix)
$(cat cmake/windows_libraries/CMakeLists.txt cmake/mingw-w64.cmake)"
    [ "$(cat "$libraries/stamp" 2>/dev/null)" = "$stamp" ] && return
    say "libraries for Windows"
    rm -rf "$libraries"
    mkdir -p "$libraries/sources"
    (cd "$libraries/sources" && fetch cpp-httplib lua5.4)
    cmake -S cmake/windows_libraries -B "$libraries/build" --toolchain "$repository/cmake/mingw-w64.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$repository/$libraries" \
        -DHTTPLIB_SOURCES="$(dirname "$repository/$libraries"/sources/*/httplib.h)" \
        -DLUA_SOURCES="$(dirname "$repository/$libraries"/sources/*/src)" >/dev/null
    cmake --build "$libraries/build" --parallel "$(nproc)" >/dev/null
    cmake --install "$libraries/build" >/dev/null
    printf '%s\n' "$stamp" >"$libraries/stamp"
}

scripts/setup.sh --windows
libraries_make || fail "the libraries for Windows"
scripts/build.sh windows VornServer
