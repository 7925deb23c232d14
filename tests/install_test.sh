#!/usr/bin/env bash
# Installs the Debian packages of folder $1 in a fresh Debian, starts the service as its unit does, asks it by its
# own client, stops and removes it, and finds nothing left but the projects. Needs root and mmdebstrap.
set -euo pipefail
packages=$(cd "$1" && pwd)
fail() {
    echo "install test: $*" >&2
    exit 1
}
[ "$(id -u)" = 0 ] || { echo "install test: left out, since it needs root"; exit 0; }
folder=$(mktemp -d)
root=$folder/root
trap 'rm -rf "$folder"' EXIT

sources=/etc/apt/sources.list.d/debian.sources
[ -e "$sources" ] || sources=/etc/apt/sources.list
# What the packages need besides each other, and what this test does.
needed=$(for package in "$packages"/*.deb; do dpkg-deb -f "$package" Depends; done |
    tr ',' '\n' | sed 's/ *\([^ ]*\).*/\1/' | grep -v vornserver | sort -u | paste -sd ,)
mmdebstrap --quiet --variant=apt --include="$needed,procps" bookworm "$root" "$sources"

in_root() { chroot "$root" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"; }
files() { (cd "$root" && find . -xdev \( -path ./proc -o -path ./run -o -path ./var/cache -o -path ./var/lib/apt -o -path ./var/log \) \
    -prune -o -print | sort); }
files >"$folder/before"
cp "$packages"/*.deb "$root/tmp/"
in_root sh -c 'dpkg --install /tmp/libvornserver1_*.deb /tmp/vornserver_*.deb /tmp/python3-vornserver_*.deb' >"$folder/dpkg.log" 2>&1 || {
    cat "$folder/dpkg.log" >&2
    fail "the packages cannot be installed"
}
rm -f "$root"/tmp/*.deb

# How open the unit leaves the system, in tenths: 50 and more is no longer "OK".
if command -v systemd-analyze >/dev/null; then
    systemd-analyze security --offline=true --threshold=40 "$root/usr/lib/systemd/system/vorn-host@.service" >"$folder/unit" \
        || { cat "$folder/unit" >&2; fail "the unit leaves too much open"; }
else
    echo "install test: the unit is not judged, since systemd-analyze is not here"
fi

# The unit's own command line, as its own user, where the unit works. It tells a manager when it answers.
unit=$root/usr/lib/systemd/system/vorn-host@.service
setting() { sed -n "s/^$1=//p" "$unit" | sed 's/%i/plant/g'; }
command=$(setting ExecStart)
user=$(setting User)
work=$(setting WorkingDirectory)
in_root install -d -o "$user" -g "$user" "$(dirname "$work")" "$work"
cat >"$folder/session.sh" <<SESSION
set -euo pipefail
mount -t proc proc "$root/proc"
ip link set lo up
run() { chroot "$root" runuser -u "$user" -- env HOME=/nonexistent "\$@"; }
run sh -c 'cd $work && exec $command' >"$folder/host.log" 2>&1 &
for tries in \$(seq 300); do
    grep -q '^VornServer answers on ' "$folder/host.log" && break
    sleep 0.1
done
run vorn-send Create PLANT1 | grep -qx OK
run vorn-send --file /usr/share/vornserver/examples/cold_store.json PjtSent PLANT1 | grep -qx OK
run vorn-send NetAccess PLANT1 | grep -qx OK
run vornserver check PLANT1 | grep -qx OK
run vornserver check /usr/share/vornserver/examples/plans/chilled_water.json | grep -qx OK
run vorn-send --pipe Fdp PLANT1 | grep -qx 1
chroot "$root" pkill -TERM -x vorn-host
wait
SESSION
unshare --mount --net --pid --fork --kill-child bash "$folder/session.sh" || {
    cat "$folder/host.log" >&2
    fail "the installed service does not do its work"
}
grep -q '^VornServer has ended' "$folder/host.log" || fail "the service did not end in order"
[ -s "$root/var/lib/vornserver/plant/AlgProject/PLANT1/PLANT1.json" ] || fail "the project was not stored"

in_root dpkg --purge python3-vornserver vornserver libvornserver1 >"$folder/dpkg.log" 2>&1
files | grep -v '^\./var/lib/vornserver' >"$folder/after"
# What the package system itself keeps is not the packages' own.
left=$(diff "$folder/before" "$folder/after" | grep '^>' | grep -vE ' \./(var/lib/dpkg|etc/(passwd|group|shadow|gshadow|sub[ug]id)-?$|etc/\.pwd)' || true)
[ -z "$left" ] || fail "left behind: $left"
[ -d "$root/var/lib/vornserver/plant/AlgProject/PLANT1" ] || fail "the projects are gone"
echo "install test: installed, served, ended, removed; only the projects are left"
