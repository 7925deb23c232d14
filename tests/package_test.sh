#!/usr/bin/env bash
# Gives the build of folder $1 away as its users get it, installed or, for Windows, in an archive, and has another
# project, beside this script, find and use it. $2 is the generator of build files, what follows goes to CMake.
set -euo pipefail
build=$1
generator=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
repository=$(dirname "$here")
folder=$(mktemp -d)
started=
finish() {
    [ -z "$started" ] || kill "$started" 2>/dev/null || true
    wait
    rm -rf "$folder"
}
trap finish EXIT
fail() {
    echo "$*" >&2
    exit 1
}
# quietly COMMAND...: what it says is shown when it fails.
quietly() { "$@" >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"; }

files=(include/vorn_server.h include/vorn_contract.h share/vornserver/examples/cold_store.json
       share/vornserver/examples/hosts/host.cpp share/vornserver/docs/README.md)
if [ -e "$build/bin/VornServer.dll" ]; then
    exe=.exe
    run=("$repository/scripts/wine")
    files+=(lib/libVornServer.dll.a lib/VornServer.def share/vornserver/docs/images/console.png)
    quietly env -C "$build" cpack -G ZIP -B "$folder"
    archive=$(echo "$folder"/*.zip)
    [[ $archive == */VornServer-*.*.*-windows-x64.zip ]] || fail "the archive's name: $archive"
    python3 -m zipfile -e "$archive" "$folder"
    prefix=${archive%.zip}
    "$here/exports_test.sh" "$prefix/bin/VornServer.dll" "$prefix/bin/vorn-host.exe" "$prefix/bin/vorn-send.exe"
else
    exe=''
    run=()
    prefix=$folder/prefix
    quietly cmake --install "$build" --prefix "$prefix"
fi
[ ! -e "$build/share/vornserver/console/index.html" ] || files+=(share/vornserver/console/index.html)
for path in "${files[@]}"; do
    [ -e "$prefix/$path" ] || fail "$path is not there"
done

quietly cmake -G "$generator" -S "$here/package" -B "$folder/build" -DCMAKE_PREFIX_PATH="$prefix" "$@"
quietly cmake --build "$folder/build"
for language in c cpp; do
    "${run[@]}" "$folder/build/entries_in_$language$exe" || fail "the program in $language finds fault $?"
done
"${run[@]}" "$prefix/bin/vorn-host$exe" --version | grep -q '^vorn-host [0-9]' || fail "vorn-host does not tell its version"

# serves COMMAND...: a host that answers, behind such as run here already, and fetches the log of what it answered.
serves() {
    mkdir -p "$folder/work"
    (cd "$folder/work" && exec "$@") >"$folder/log" 2>&1 &
    started=$!
    for tries in $(seq 0 300); do
        "${run[@]}" "$prefix/bin/vorn-send$exe" --port $((33360 + tries % 5)) Get NONE >"$folder/reply" 2>&1 || true
        if grep -q '^read:  Get NONE .*找不到变量名称' "$folder/log"; then break; fi
        kill -0 "$started" && [ "$tries" -lt 300 ] || fail "$*: $(cat "$folder/reply" "$folder/log")"
        sleep 0.1
    done
    kill "$started"
    wait "$started" || true
    started=
}
serves "${run[@]}" "$folder/build/host$exe"
if [ -n "$exe" ] || [[ $* == *-fsanitize* ]]; then
    echo "the host in C# is left out, since its run-time is not this build's"
elif ! command -v mcs >/dev/null || ! command -v mono >/dev/null; then
    echo "the host in C# is left out, since mono is not here"
else
    mcs -out:"$folder/Host.exe" "$repository/examples/hosts/Host.cs"
    serves env LD_LIBRARY_PATH="$prefix/lib" mono "$folder/Host.exe"
fi

# shown PAGE LANGUAGE: the page's listing in that language.
shown() { sed -n "/^\`\`\`$2\$/,/^\`\`\`\$/p" "$repository/$1" | sed '1d;$d'; }
diff <(shown README.md cpp) "$repository/examples/hosts/host.cpp" || fail "README.md shows another host"
diff <(shown docs/windows.md csharp) "$repository/examples/hosts/Host.cs" || fail "docs/windows.md shows another host"
echo "the package is found, and works"
