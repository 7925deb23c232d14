#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests. With --full also the format and lint checks, the tests for
# Windows, the sanitizer runs, a while of fuzzing, what is installed and deployed, and the other release of Debian.
# Prints how long each stage took.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

full=no
case "${1:-}" in
    "") ;;
    --full) full=yes ;;
    *) fail "usage: scripts/test.sh [--full]" ;;
esac
cd "$repository"

current=
begun=0
stage() { # NAME, or nothing at the end
    [ -z "$current" ] || say "stage: $current: $((SECONDS - begun)) s"
    current=${1:-}
    begun=$SECONDS
}

run_preset() { # PRESET [ctest arguments]
    local preset=$1
    shift
    stage "$preset"
    scripts/build.sh "$preset" || exit 1
    say "tests: $preset"
    ctest --preset "$preset" --parallel "$(nproc)" "$@" || fail "the tests of $preset"
}

sources() { git ls-files '*.cpp' '*.h'; }

if [ "$full" = yes ]; then
    stage "packages of the system"
    scripts/setup.sh --full
    stage format
    sources | xargs clang-format --dry-run --Werror || fail "the format check; clang-format -i mends it"
else
    scripts/setup.sh
fi

run_preset release
stage console
scripts/test_console.sh "$@" || exit 1

if [ "$full" = yes ]; then
    stage lint
    # One source belongs to a build with another option, which has no place in the list of this build's commands.
    git ls-files '*.cpp' ':!tests' ':!bench' ':!examples' ':!*/windows/*' ':!transport/http_server_public.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet 2>/dev/null \
        || fail "the lint check"
    stage "types and the tool server's style"
    mypy || fail "the types of the Python code"
    for part in "tests/api/schemas test" "clients/typescript check" "clients/mcp check"; do
        read -r folder script <<<"$part"
        if npm --prefix "$folder" ci --no-progress >/dev/null 2>&1; then
            npm --prefix "$folder" run --silent "$script" || fail "npm run $script in $folder"
        else
            say "$folder: not checked: npm could not fetch the tools"
        fi
    done
    stage Windows
    scripts/windows.sh --lint || exit 1
    run_preset asan
    # Under ThreadSanitizer only the tests with threads are worth their time.
    run_preset tsan -R Threads
    stage fuzzing
    scripts/fuzz.sh || exit 1
    stage "packages, installed in a fresh Debian"
    scripts/package.sh || exit 1
    lintian --fail-on error build/package/packages/*.deb || fail "the packages' form"
    tests/install_test.sh build/package/packages || fail "the installation"
    stage "the proxy and the fleet"
    /usr/bin/python3 -B -m pytest -q -p no:cacheprovider tests/deploy || fail "the tests of the deployment"
fi
stage
say "test: all passed"
