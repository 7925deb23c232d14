#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests. With --full also the format and lint checks, the tests for
# Windows, the sanitizer runs, a while of fuzzing and what is installed and deployed.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

full=no
case "${1:-}" in
    "") ;;
    --full) full=yes ;;
    *) fail "usage: scripts/test.sh [--full]" ;;
esac
cd "$repository"

run_preset() { # PRESET [ctest arguments]
    local preset=$1
    shift
    scripts/build.sh "$preset" || exit 1
    say "tests: $preset"
    ctest --preset "$preset" --parallel "$(nproc)" "$@" || fail "the tests of $preset"
}

sources() { git ls-files '*.cpp' '*.h'; }

if [ "$full" = yes ]; then
    scripts/setup.sh --full
    say "format"
    sources | xargs clang-format --dry-run --Werror || fail "the format check; clang-format -i mends it"
else
    scripts/setup.sh
fi

run_preset release
scripts/test_console.sh "$@" || exit 1

if [ "$full" = yes ]; then
    say "lint"
    git ls-files '*.cpp' ':!tests' ':!bench' ':!examples' ':!*/windows/*' | xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet 2>/dev/null \
        || fail "the lint check"
    mypy || fail "the types of the Python code"
    for part in typescript mcp; do
        if npm --prefix "clients/$part" ci --no-progress >/dev/null 2>&1; then
            npm --prefix "clients/$part" run --silent check || fail "the types and style of clients/$part"
        else
            say "clients/$part: types and style not checked: npm could not fetch the tools"
        fi
    done
    scripts/windows.sh --lint || exit 1
    run_preset asan
    # Under ThreadSanitizer only the tests with threads are worth their time.
    run_preset tsan -R Threads
    scripts/fuzz.sh || exit 1
    say "packages, installed in a fresh Debian"
    scripts/package.sh || exit 1
    lintian --fail-on error build/package/packages/*.deb || fail "the packages' form"
    tests/install_test.sh build/package/packages || fail "the installation"
    say "the proxy and the fleet"
    /usr/bin/python3 -B -m pytest -q -p no:cacheprovider tests/deploy || fail "the tests of the deployment"
fi
say "test: all passed"
