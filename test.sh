#!/bin/bash
# Installs what the tests need, builds everything and runs every test: the
# release build, the same tests under the sanitizers, those of the program for
# Windows under Wine, for 64-bit ARM under qemu, and of the WebAssembly package
# under Node. The last line printed is "N passed, N failed" (and skipped ones, if
# any).
#
#   ./test.sh quick           after a change: what can notice it, in a minute
#   ./test.sh                 release, sanitize, windows, arm64 and web
#   ./test.sh release         one stage only
#   ./test.sh s390x           another byte order (docs/testing.md)
#   ./test.sh --only PATTERN release    of its tests only those named like that
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
cd "$root" || exit 1
. tools/packages.sh
. tools/environment.sh
. web/packages.sh

options=()
if [ "${1:-}" = --only ]; then
  options=(--only "${2:?--only needs a pattern}")
  shift 2
fi
stages=("$@")
[ ${#stages[@]} -gt 0 ] || stages=(release sanitize windows arm64 web)

wanted() {
  [[ " ${stages[*]} " == *" $1 "* ]]
}

# Compiler and test library; format check; scripts. Then the instruction counter
# and the referees, peers and clients of the tests that play whole games.
packages=(g++ cmake ninja-build libgtest-dev libgmock-dev clang-format cppcheck python3)
wanted quick || packages+=(libbenchmark-dev dpkg-dev file valgrind polyglot stockfish xboard fairymax
  xvfb xauth xdotool xclip desktop-file-utils)
need_packages "${packages[@]}" ||
  echo "Some packages could not be installed; tests that need them are skipped." >&2

# The newest compiler besides g++.
if wanted release && clang=$(newest_clang_package) && [ -n "$clang" ]; then
  need_packages "$clang" || echo "$clang could not be installed; its test may be skipped." >&2
fi

# Windows: the cross compiler, the test library's sources, and Wine. Without
# them nothing can be said about that system: under CI ($CI is set) the stage
# counts as failed, elsewhere it is left out, which the end of the run says
# once more.
if wanted windows && ! need_packages g++-mingw-w64-x86-64-posix googletest wine64; then
  options+=(--left-out windows)
fi

# Other processors: the cross compilers, and an emulator in the same way.
if wanted arm64 && ! need_packages g++-aarch64-linux-gnu googletest qemu-user; then
  options+=(--left-out arm64)
fi
if wanted s390x && ! need_packages g++-s390x-linux-gnu googletest qemu-user; then
  options+=(--left-out s390x)
fi

# WebAssembly: emscripten, Node, and a browser for the page, in the same way.
if wanted web && ! { need_page_packages && need_page_test_packages; }; then
  options+=(--left-out web)
fi

in_clean_environment /usr/bin/python3 tools/run_tests.py "${options[@]}" "${stages[@]}"
