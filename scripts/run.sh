#!/usr/bin/env bash
# Builds what is missing and runs the service. `run.sh demo` starts it, plays a script of requests and leaves it
# running until Ctrl-C; `run.sh demo --once` ends with the script. Other arguments go to vorn-host.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
scripts/setup.sh
scripts/build.sh release vorn-host vorn-send

# The service stores projects in ../AlgProject/, seen from its working directory; the demo's lie apart.
place=run
[ "${1:-}" != demo ] || place=run/demo
mkdir -p "$place/work"
cd "$place/work"
host=$repository/build/release/bin/vorn-host

if [ "${1:-}" != demo ]; then
    say "run: $host $* (Ctrl-C ends it)"
    exec "$host" "$@"
fi
case "${2:-}" in
    "" | --once) ;;
    *) fail "usage: scripts/run.sh demo [--once]" ;;
esac

folder=$(mktemp -d)
log=$folder/host.log
started=()
finish() {
    kill -TERM "${started[@]}" 2>/dev/null || true
    wait "${started[@]}" 2>/dev/null || true
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 0' INT TERM

# await SECONDS COMMAND: until the command succeeds, at most so long.
await() {
    local tries=$(($1 * 10))
    shift
    while ! "$@"; do
        [ $((tries -= 1)) -gt 0 ] || return 1
        sleep 0.1
    done
}
# told PATTERN: what the host told behind the pattern, a line's beginning.
told() { sed -n "s|^$1||p" "$log" | head -n 1; }
has_told() { [ -n "$(told "$1")" ]; }

# Two pseudo-terminals stand for a serial link: the host has one end, the demo the other.
socat "PTY,raw,echo=0,link=$folder/near" "PTY,raw,echo=0,link=$folder/far" &
started+=($!)
await 5 test -e "$folder/near" || fail "the pseudo-terminals of the serial line"

"$host" --serial "$folder/near" >"$log" 2>&1 &
started+=($!)
if ! await 10 has_told 'VornServer answers on '; then
    cat "$log" >&2
    fail "the service did not start"
fi
await 10 has_told 'VornServer holds ' || true
address=$(told 'VornServer answers on ')

VORN_PIPE=$(told 'VornServer holds the pipe VornServerPipe') VORN_SERIAL=$folder/far VORN_PICTURES=$repository/run/demo \
    "$repository/scripts/demo.sh" "$address" || fail "the demo"
say "some lines of the exchanges that the host printed"
grep _GTemp "$log" | tail -n 4
if [ "${2:-}" = --once ]; then
    say "demo: played whole"
else
    say "demo: played whole; the service goes on at $address until Ctrl-C"
    console=$(told 'VornServer shows its plants at ')
    if [ -n "$console" ]; then say "see the plant that runs in a browser: $console#COLD"; else say "no console: $(told 'VornServer has no console: ')"; fi
    wait "${started[1]}"
fi
