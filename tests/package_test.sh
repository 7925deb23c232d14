#!/usr/bin/env bash
# Installs the build of folder $1 and has another project, beside this script, find and use it. $2 is the generator
# of build files, $3 are compiler flags that the build needs of its users.
set -euo pipefail
build=$1
generator=$2
flags=${3:-}
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cmake --install "$build" --prefix "$folder/prefix" >/dev/null
for path in include/vorn_server.h bin/vorn-host; do
    [ -e "$folder/prefix/$path" ] || { echo "$path is not installed" >&2; exit 1; }
done
cmake -G "$generator" -S "$here/package" -B "$folder/build" -DCMAKE_PREFIX_PATH="$folder/prefix" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$folder/build" >/dev/null
"$folder/build/uses_vorn_server"
"$folder/prefix/bin/vorn-host" --help >/dev/null
echo "the installed package is found and works"
