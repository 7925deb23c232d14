#!/usr/bin/env bash
# Builds one preset: build.sh [PRESET] [-DOPTION=VALUE...] [TARGET...]. The preset is release (the default), debug,
# asan, tsan, fuzz, package or windows; options, such as -DVORN_ENGINE_DIR=FOLDER, go to CMake and hold until they are given anew.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

preset=release
options=() targets=()
for word in "$@"; do
    case "$word" in
        -D*) options+=("$word") ;;
        release | debug | asan | tsan | windows | fuzz | package) preset=$word ;;
        *) targets+=("$word") ;;
    esac
done
cd "$repository"
generator=()
if [ ! -f "build/$preset/CMakeCache.txt" ] && command -v ninja >/dev/null; then generator=(-G Ninja); fi

say "configure $preset"
cmake --preset "$preset" "${generator[@]}" "${options[@]}" || fail "the configuration of $preset"
say "build $preset"
cmake --build --preset "$preset" --parallel "$(nproc)" ${targets:+--target "${targets[@]}"} || fail "the build of $preset"
say "build: $preset stands in build/$preset"
