#!/usr/bin/env bash
# Installs the Debian packages that are missing: those of the build and its tests. With --package also those that make
# packages, with --full those too and those of the page, the tool server and all checks, with --windows those that
# build and run for Windows. With --print RELEASE it only prints the names for that release of Debian, a line each.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

release=$([ ! -e /etc/os-release ] || . /etc/os-release && printf %s "${VERSION_CODENAME:-}")
[ "${1:-}" != --print ] || release=${2:?the name of a release}
# The sanitizers' run-time that goes with the release's Clang.
case "$release" in
    bookworm) clang_runtime=libclang-rt-14-dev ;;
    noble) clang_runtime=libclang-rt-18-dev ;;
    *) clang_runtime=libclang-rt-19-dev ;;
esac

packages=(g++ cmake ninja-build pkg-config curl python3 socat locales
          rapidjson-dev libcpp-httplib-dev libcli11-dev libeigen3-dev libutfcpp-dev liblua5.4-dev libgtest-dev
          libbenchmark-dev python3-jsonschema python3-pytest
          python3-build python3-setuptools python3-wheel python3-networkx)
[ "${1:-}" = --full ] && packages+=(clang-format clang-tidy mypy clang "$clang_runtime")
[[ "${1:-}" = --package || "${1:-}" = --full ]] && packages+=(dpkg-dev file)
[ "${1:-}" = --windows ] && packages+=(g++-mingw-w64-x86-64-posix wine wine64 dpkg-dev)
# The console's page and the tool server are built with Node, from wherever it came, and the page is tested in a browser.
[[ "${1:-}" = --package || "${1:-}" = --full ]] && ! command -v npm >/dev/null && packages+=(nodejs npm)
[ "${1:-}" = --full ] && packages+=(chromium fonts-noto-cjk)
[ "${1:-}" = --full ] && packages+=(haproxy openssl mmdebstrap lintian iproute2 mono-mcs mono-runtime)
if [ "${1:-}" = --print ]; then
    printf '%s\n' "${packages[@]}"
    exit 0
fi

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
