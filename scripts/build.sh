#!/usr/bin/env bash
# Builds one preset: release (the default), debug, asan, tsan or windows; behind it targets, where not all are wanted.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

preset=${1:-release}
targets=("${@:2}")
cd "$repository"
generator=()
if [ ! -f "build/$preset/CMakeCache.txt" ] && command -v ninja >/dev/null; then generator=(-G Ninja); fi

say "configure $preset"
cmake --preset "$preset" "${generator[@]}" || fail "the configuration of $preset"
say "build $preset"
cmake --build --preset "$preset" --parallel "$(nproc)" ${targets:+--target "${targets[@]}"} || fail "the build of $preset"
say "build: $preset stands in build/$preset"
