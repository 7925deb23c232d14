#!/usr/bin/env bash
# Builds the release and runs its tests in a fresh Debian of the other supported release: Debian 13 on a machine of
# Debian 12, else Debian 12. The packages come from this machine's own mirror. The build and the tests have no network
# but a loopback of their own. Prints one line and succeeds where no such system can be made.
set -euo pipefail
. "$(dirname "$0")/lib.sh"
cd "$repository"

skip() {
    say "the other Debian: left out: $*"
    exit 0
}
[ "$(id -u)" = 0 ] || skip "it needs root"
command -v mmdebstrap >/dev/null || skip "mmdebstrap is not there; scripts/setup.sh --full installs it"
here=$(. /etc/os-release && printf %s "${VERSION_CODENAME:-}")
other=bookworm
[ "$here" != bookworm ] || other=trixie
sources=/etc/apt/sources.list.d/debian.sources
[ -e "$sources" ] || sources=/etc/apt/sources.list
[ -e "$sources" ] || skip "the sources of this machine's packages are not known"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
root=$folder/root
sed "s/\b$here\b/$other/g" "$sources" >"$folder/$(basename "$sources")"
packages=$(scripts/setup.sh --print "$other" | paste -sd ,)
say "the other Debian: $other"
mmdebstrap --quiet --variant=apt --include="$packages" "$other" "$root" "$folder/$(basename "$sources")" \
    >"$folder/mmdebstrap.log" 2>&1 || skip "$(tail -n 1 "$folder/mmdebstrap.log")"

mkdir "$root/source"
git ls-files -z | tar --create --null --files-from=- --ignore-failed-read | tar --extract --directory="$root/source"
cat >"$folder/session.sh" <<SESSION
set -euo pipefail
mount -t proc proc "$root/proc"
mount -t tmpfs shm "$root/dev/shm"
mount -t devpts -o newinstance,ptmxmode=0666 pts "$root/dev/pts"
ip link set lo up
exec chroot "$root" env -i HOME=/root LC_ALL=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin /source/scripts/test.sh
SESSION
unshare --mount --net --pid --fork --kill-child bash "$folder/session.sh" </dev/null \
    || fail "the build or the tests in $other"
say "the other Debian: $other passed"
