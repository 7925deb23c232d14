#!/usr/bin/env bash
# Makes the Debian packages and the archive that runs from any folder: build/package/packages and
# build/release/packages. Their checksums stand beside them.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
scripts/setup.sh
# make PRESET GENERATOR: the packages of one build.
make() {
    rm -rf "build/$1/packages"
    scripts/build.sh "$1"
    (cd "build/$1" && cpack -G "$2" >cpack.log) || fail "the packages of $1: build/$1/cpack.log"
    (cd "build/$1/packages" && rm -rf _CPack_Packages && sha256sum ./* >SHA256SUMS && ls -l)
}
say "packages for Debian"
make package DEB
say "an archive"
make release TGZ
