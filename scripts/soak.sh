#!/usr/bin/env bash
# Builds the host and asks it over all three ways in for some minutes, 10 if none are given: soak.sh [MINUTES]. Each
# reply is checked, and that memory, descriptors and threads stay level.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

cd "$repository"
scripts/setup.sh
scripts/build.sh release vorn-host
python3 -B tests/soak/soak.py build/release/bin/vorn-host "${1:-10}" || fail "the soak"
say "soak: all replies were right and the host stayed level"
