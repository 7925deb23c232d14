#!/usr/bin/env bash
# Makes the Debian packages, the archive that runs from any folder, and a wheel and a source archive of the Python
# client: build/package/packages and build/release/packages. With `windows` the archive for Windows instead, of what scripts/windows.sh has built:
# build/windows/packages. Their checksums stand beside them.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
# make PRESET GENERATOR: the packages of one build.
make() {
    rm -rf "build/$1/packages"
    scripts/build.sh "$1"
    (cd "build/$1" && cpack -G "$2" >cpack.log) || fail "the packages of $1: build/$1/cpack.log"
    (cd "build/$1/packages" && rm -rf _CPack_Packages && sha256sum ./* >SHA256SUMS && ls -l)
}
case "${1:-}" in
    "") scripts/setup.sh --package ;;
    windows)
        say "an archive for Windows"
        make windows ZIP
        exit 0
        ;;
    *) fail "usage: scripts/package.sh [windows]" ;;
esac
say "packages for Debian"
make package DEB
say "an archive"
make release TGZ
say "the Python client as a wheel and as a source archive"
source=$(mktemp -d)
trap 'rm -rf "$source"' EXIT
git archive HEAD clients/python | tar -x -C "$source"
/usr/bin/python3 -m build --no-isolation --outdir build/release/packages "$source/clients/python" >"$source/log" \
    || fail "the Python packages: $(tail -n 5 "$source/log")"
(cd build/release/packages && rm -f SHA256SUMS && sha256sum ./* >SHA256SUMS && ls -l)
