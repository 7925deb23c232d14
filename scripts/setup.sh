#!/usr/bin/env bash
# Installs the Debian packages that are missing. With --package also those that make packages, with --full those too
# and those of the format and lint checks, with --windows those that build and run for Windows.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

packages=(g++ cmake ninja-build pkg-config curl python3 socat locales
          rapidjson-dev libcpp-httplib-dev libcli11-dev libeigen3-dev libutfcpp-dev liblua5.4-dev libgtest-dev
          libbenchmark-dev python3-jsonschema python3-pytest
          python3-build python3-setuptools python3-wheel python3-networkx)
[ "${1:-}" = --full ] && packages+=(clang-format clang-tidy mypy clang libclang-rt-14-dev libutfcpp-dev)
[[ "${1:-}" = --package || "${1:-}" = --full ]] && packages+=(dpkg-dev file)
[ "${1:-}" = --windows ] && packages+=(g++-mingw-w64-x86-64-posix wine wine64 dpkg-dev)
# The console's page is built with Node, from wherever it came, and tested in a browser.
command -v npm >/dev/null || packages+=(nodejs npm)
[ "${1:-}" = --full ] && packages+=(chromium fonts-noto-cjk)
[ "${1:-}" = --full ] && packages+=(haproxy openssl mmdebstrap lintian iproute2 mono-mcs mono-runtime)

if ! command -v apt-get >/dev/null; then
    say "no apt on this system: make sure that these Debian packages' likes are installed: ${packages[*]}"
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    say "setup: all packages are there"
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "not root and no sudo; install as root: apt-get install ${missing[*]}"
    as_root=(sudo)
fi
say "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
say "setup: installed"
