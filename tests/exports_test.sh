#!/usr/bin/env bash
# Holds what the library $1 shows against the entries that its header declares. Of a library for Windows and the
# programs behind it also what they need: nothing but the system's own libraries.
set -euo pipefail
library=$1
header=$(dirname "$0")/../include/vorn_server.h

fail() {
    echo "$*" >&2
    exit 1
}

tables() { x86_64-w64-mingw32-objdump -p "$1"; }
shown() {
    case "$library" in
        *.dll) tables "$library" | sed -n '/Ordinal\/Name Pointer/,/^$/s/^[[:blank:]]*\[ *[0-9]*\] //p' ;;
        *) nm -D --defined-only "$library" | awk '{ print $3 }' ;;
    esac
}
declared=$(sed -n 's/^VORN_EXPORT.*[ *]\([A-Za-z_]*\)(.*/\1/p' "$header" | LC_ALL=C sort)
[ "$(wc -l <<<"$declared")" = 9 ] || fail "the header declares: $declared"
diff <(echo "$declared") <(shown | LC_ALL=C sort) || fail "the library shows other symbols than its header declares"
echo "the library shows its nine entries"

case "$library" in
    *.dll) ;;
    *)
        settings=$(nm -D --undefined-only "$library" | grep -E '\b(mallopt|malloc_trim|mallinfo2?|setlocale|signal|setrlimit)\b' || true)
        [ -z "$settings" ] || fail "the library changes its host's process: $settings"
        echo "the library leaves its host's settings alone"
        exit 0
        ;;
esac
system='ADVAPI32|CRYPT32|IPHLPAPI|KERNEL32|SHELL32|WINMM|WS2_32|msvcrt'
for file in "$@"; do
    needed=$(tables "$file" | sed -n 's/.*DLL Name: //p')
    [ -n "$needed" ] || fail "$file: the libraries that it needs cannot be read"
    others=$(grep -Eiv "^($system)\\.dll$" <<<"$needed" || true)
    [ -z "$others" ] || fail "$(basename "$file") needs $others"
done
echo "the library and the programs need nothing but the system's own libraries"
