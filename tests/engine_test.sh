#!/usr/bin/env bash
# Links against engines of its own making: another folder counts at once, and what is missing is named. $1 is the
# generator of build files.
set -euo pipefail
generator=$1
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# engine NAME SOURCE [PLACE]: libraries in a folder of that name, the first of them from the source.
engine() {
    local place=$folder/$1/${3:-}
    mkdir -p "$place"
    echo "$2" | cc -shared -fPIC -x c - -o "$place/libVornCore.so"
    for name in VornVar VornChartCache; do echo "" | cc -shared -fPIC -x c - -o "$place/lib$name.so"; done
}
# linked NAME [TARGET]: configures with that engine, in one build folder for all, and builds.
linked() {
    cmake -G "$generator" -S "$here/engine" -B "$folder/build" -DVORN_ENGINE_DIR="$folder/$1" >"$folder/log" 2>&1 \
        && cmake --build "$folder/build" --target "${2:-host}" >>"$folder/log" 2>&1
}
expect() { # WHAT COMMAND...
    local what=$1
    shift
    "$@" || { cat "$folder/log" >&2 && echo "expected: $what" >&2 && exit 1; }
}
result() { # NUMBER: what the engine's operation gives
    local status=0
    "$folder/build/host" || status=$?
    [ "$status" = "$1" ]
}
told() { grep -q "$1" "$folder/log"; }
refused() { ! linked "$@"; }

engine first 'int Operation(void) { return 1; }'
engine second 'int Operation(void) { return 2; }' lib
engine lacking 'int OtherOperation(void) { return 3; }'
mkdir "$folder/empty"

expect "the first engine is linked" linked first
expect "its folder is told" told "closed libraries of $folder/first"
expect "its operation runs" result 1
expect "the second engine is linked" linked second
expect "its operation runs" result 2
expect "a folder without libraries is refused" refused empty
expect "the library and the folder are named" told "no library VornCore in $folder/empty"
expect "an engine that lacks an operation is refused" refused lacking service
expect "the operation is named" told "undefined reference to .Operation'"
echo "each engine is linked as it is"
