#!/usr/bin/env bash
# Builds everything for Windows on a Debian machine, runs the tests of the preset under Wine, and makes the archive.
# With --lint also the lint check of what is this system's own.
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

# A Windows of the repository's own, and the locale that gives it a Chinese code page; made once for a version of Wine.
wine_make() {
    local stamp=build/windows-wine/stamp version port
    version=$(dpkg-query -W wine64 locales)
    [ "$(cat "$stamp" 2>/dev/null)" = "$version" ] && return
    rm -rf build/windows-wine build/windows-locale
    mkdir -p build/windows-locale
    localedef -i zh_CN -f UTF-8 build/windows-locale/zh_CN.UTF-8 || return
    scripts/wine wineboot --init || return
    for port in COM20 COM21; do
        scripts/wine reg add 'HKLM\Software\Wine\Ports' /v "$port" /d "$repository/build/windows-ports/$port" /f || return
    done
    # The ports are looked for at the start.
    scripts/wine --end
    printf '%s\n' "$version" >"$stamp"
}

# A null modem between the two ports, until the script ends.
ports_start() {
    mkdir -p build/windows-ports
    rm -f build/windows-ports/*
    socat pty,rawer,link=build/windows-ports/COM20 pty,rawer,link=build/windows-ports/COM21 &
    modem=$!
    while [ ! -e build/windows-ports/COM21 ]; do kill -0 "$modem" && sleep 0.1 || return; done
    export VORN_TEST_PORTS=COM20,COM21
}

end() {
    scripts/wine --end || true
    [ -z "$modem" ] || kill "$modem"
}

# The lint check, with the cross-compiler's headers and without the one option that it does not know.
lint() {
    local headers=() folder commands=build/windows/lint
    while read -r folder; do headers+=("--extra-arg=-isystem$folder"); done < <(
        x86_64-w64-mingw32-g++-posix -v -E -x c++ /dev/null 2>&1 | sed -n 's/^ \(.*c++.*\)$/\1/p')
    mkdir -p "$commands"
    sed 's/-fno-keep-inline-dllexport//' build/windows/compile_commands.json >"$commands/compile_commands.json"
    git ls-files 'platform/windows/*.cpp' 'host/windows/*.cpp' | xargs -P "$(nproc)" -n 4 \
        clang-tidy -p "$commands" --quiet --extra-arg=--target=x86_64-w64-mingw32 "${headers[@]}" 2>/dev/null
}

case "${1:-}" in
    "" | --lint) ;;
    *) fail "usage: scripts/windows.sh [--lint]" ;;
esac
scripts/setup.sh --windows
libraries_make || fail "the libraries for Windows"
scripts/build.sh windows || exit 1
if [ "${1:-}" = --lint ]; then
    say "lint: windows"
    lint || fail "the lint check of windows"
fi
modem=
trap end EXIT
say "a Windows for the tests"
wine_make >build/windows-wine.log 2>&1 || { cat build/windows-wine.log && fail "a Windows for the tests"; }
ports_start || fail "serial ports for the tests"
say "tests: windows"
# Under load Wine refuses to start a program now and then; a fault of ours fails twice.
ctest --preset windows --parallel "$(nproc)" --repeat until-pass:2 || fail "the tests of windows"
scripts/package.sh windows || exit 1
say "windows: all passed"
