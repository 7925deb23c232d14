#!/usr/bin/env bash
# Starts a fleet on this machine: fleet.sh [N [ADDRESS:PORT [FOLDER]]], four servers behind 127.0.0.1:8400 with
# their store in run/fleet by default. Each server works in a folder of its own and shares the store with the
# others; one that dies is started again. Ctrl-C ends all.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

count=${1:-4}
bind=${2:-127.0.0.1:8400}
place=${3:-$repository/run/fleet}
host=${VORN_HOST:-$repository/build/release/bin/vorn-host}
[[ $count =~ ^[1-9][0-9]?$ ]] || fail "usage: scripts/fleet.sh [N [ADDRESS:PORT [FOLDER]]]"
command -v haproxy >/dev/null || fail "a fleet needs HAProxy: the Debian package haproxy"
[ -x "$host" ] || scripts/build.sh release vorn-host

mkdir -p "$place/store"
declare -a servers
proxy=
finish() {
    trap - EXIT INT TERM
    kill -TERM $proxy "${servers[@]}" 2>/dev/null || true
    wait || true
}
trap finish EXIT
trap 'exit 0' INT TERM

start_server() { # NUMBER
    local folder=$place/server$1
    mkdir -p "$folder/work"
    ln -sfn ../store "$folder/AlgProject"
    # Not appended: the first line tells the address of this start.
    (cd "$folder/work" && exec "$host" --no-console >"$folder/host.log" 2>&1) &
    servers[$1]=$!
    echo "${servers[$1]}" >"$folder/pid"
}
# address NUMBER: where the server answers, once it does.
address() {
    local tries
    for ((tries = 0; tries < 300; ++tries)); do
        sed -n 's|^VornServer answers on http://\([^/]*\)/api$|\1|p;T;q' "$place/server$1/host.log" | grep . && return
        sleep 0.1
    done
    return 1
}

for ((number = 1; number <= count; ++number)); do start_server "$number"; done
cp "$repository/deploy/fleet/fleet.cfg" "$place/haproxy.cfg"
for ((number = 1; number <= count; ++number)); do
    at=$(address "$number") || fail "server $number does not start: $place/server$number/host.log"
    echo "    server server$number $at" >>"$place/haproxy.cfg"
    say "fleet: server $number answers at $at"
done
export VORN_FLEET_BIND=$bind VORN_FLEET_METRICS=${VORN_FLEET_METRICS:-127.0.0.1:8401}
haproxy -db -f "$place/haproxy.cfg" >"$place/haproxy.log" 2>&1 &
proxy=$!
for ((tries = 0; tries < 100; ++tries)); do
    curl -sf --noproxy '*' -o "$place/hi" "http://$bind/hi" && break
    kill -0 $proxy || fail "HAProxy does not start: $place/haproxy.log"
    sleep 0.1
done
say "fleet: $count servers answer at http://$bind/api until Ctrl-C; the store is $place/store"

# A server that died takes its old port again, the only free one below the others'.
while kill -0 $proxy 2>/dev/null; do
    for ((number = 1; number <= count; ++number)); do
        kill -0 "${servers[$number]}" 2>/dev/null && continue
        # Whoever mends a server keeps it down by a file `hold` in its folder.
        [ ! -e "$place/server$number/hold" ] || continue
        say "fleet: server $number has ended; it is started again"
        start_server "$number"
    done
    sleep 0.5 &
    wait $! || true
done
fail "HAProxy ended: $place/haproxy.log"
