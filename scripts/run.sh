#!/usr/bin/env bash
# Builds what is missing and runs the service. `run.sh demo` starts it, plays a script of requests and leaves it
# running until Ctrl-C; `run.sh demo --once` ends with the script. Other arguments go to vorn-host.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
scripts/setup.sh
scripts/build.sh release vorn-host

# The service stores projects in ../AlgProject/, seen from its working directory.
mkdir -p run/work
cd run/work
host=$repository/build/release/bin/vorn-host

if [ "${1:-}" != demo ]; then
    say "run: $host $* (Ctrl-C ends it)"
    exec "$host" "$@"
fi

log=$(mktemp)
"$host" >"$log" 2>&1 &
pid=$!
finish() {
    kill -TERM "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    rm -f "$log"
}
trap finish EXIT
trap 'exit 0' INT TERM

for _ in $(seq 100); do
    address=$(sed -n 's/.* answers on \(http.*\)$/\1/p' "$log")
    [ -n "$address" ] && break
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
done
if [ -z "$address" ]; then
    cat "$log" >&2
    fail "the service did not start"
fi

"$repository/scripts/demo.sh" "$address" || fail "the demo"
if [ "${2:-}" = --once ]; then
    say "demo: played whole"
else
    say "demo: played whole; the service goes on at $address until Ctrl-C"
    wait "$pid"
fi
