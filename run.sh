#!/bin/bash
# Builds Mirvo for this machine, if needed, and starts it. Arguments are the
# engine's own. Standard output carries the engine's text only, so an interface
# can use this script as its engine command.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
build=$root/build/run

. "$root/tools/packages.sh"

# The compiler's presence is what counts; package names matter only when
# something has to be installed.
if ! command -v g++ >/dev/null || ! command -v cmake >/dev/null || ! command -v ninja >/dev/null; then
  need_packages g++ cmake ninja-build
fi

configure() {
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMIRVO_ARCH=native \
    -DMIRVO_TESTS=OFF </dev/null >&2
}

# What this machine's processor can do, as one number.
processor() {
  { grep -m1 -E '^(flags|Features)' /proc/cpuinfo 2>/dev/null || true; } | cksum
}

# A build folder made under another path (a copied tree) or for another
# processor is of no use here.
if [ -f "$build/CMakeCache.txt" ] &&
  ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"; then
  rm -rf "$build"
fi
if [ -f "$build/processor" ] && [ "$(cat "$build/processor")" != "$(processor)" ]; then
  rm -rf "$build"
fi
if ! [ -f "$build/build.ninja" ] || ! grep -q '^MIRVO_ARCH:.*=native$' "$build/CMakeCache.txt"; then
  configure
fi
[ -f "$build/processor" ] || processor >"$build/processor"
cmake --build "$build" </dev/null >&2

exec "$build/shell/mirvo" "$@"
