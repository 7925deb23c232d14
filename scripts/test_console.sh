#!/usr/bin/env bash
# Tests the console's page in a browser, before the host of the release build; with --full also its types and style. Says
# in one line where that cannot be. The pictures of the page stand in run/console afterwards.
set -euo pipefail
. "$(dirname "$0")/lib.sh"
cd "$repository"

skip() {
    say "console: not tested in a browser: $*"
    exit 0
}
command -v npm >/dev/null || skip "Node and npm are not there"
[ -f build/release/share/vornserver/console/index.html ] || skip "its page is not built"
command -v "${CHROMIUM:-chromium}" >/dev/null || skip "chromium is not there; scripts/setup.sh --full installs it"
[ -d console/node_modules/playwright-core ] || npm --prefix console ci --no-progress >/dev/null \
    || skip "npm could not fetch the tools"
if [ "${1:-}" = --full ]; then
    say "console: types and style"
    npm --prefix console run --silent check || fail "the check of the console's types and style"
fi
say "console: tests in a browser"
node console/test.mjs build/release/bin/vorn-host run/console || fail "the tests of the console"
