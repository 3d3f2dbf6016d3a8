#!/bin/bash
# Installs what the tests need, builds everything and runs every test: first
# the release build, then the same tests under the sanitizers, then those of the
# program for Windows under Wine. The last line printed is "N passed, N failed"
# (and skipped ones, if any).
#
#   ./test.sh                 release, sanitize and windows
#   ./test.sh release         one stage only
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
cd "$root" || exit 1
. tools/packages.sh
. tools/environment.sh

stages=("$@")
[ ${#stages[@]} -gt 0 ] || stages=(release sanitize windows)

# Compiler and test library; format check; scripts; instruction counter;
# referees, peers and clients of the tests that play whole games.
if ! need_packages g++ cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev \
  clang-format cppcheck python3 dpkg-dev valgrind polyglot stockfish xboard fairymax xvfb xauth; then
  echo "Some packages could not be installed; tests that need them are skipped." >&2
fi
# ---- Windows: the cross compiler, the test library's sources, and Wine.
# Without them nothing can be said about that system: under CI ($CI is set) the
# stage counts as failed, elsewhere it is left out, which the end of the run
# says once more.
windows_is_tested=yes
have_windows_tools() {
  need_packages g++-mingw-w64-x86-64-posix googletest wine64 && return
  windows_is_tested=no
  complain_about_windows
  return 1
}

complain_about_windows() {
  cat <<'END'
*******************************************************************************
***  THE WINDOWS PROGRAM IS NOT TESTED: its compiler or Wine is not there and
***  could not be installed (g++-mingw-w64-x86-64-posix, googletest, wine64).
*******************************************************************************
END
}
# ----

results=()
for stage in "${stages[@]}"; do
  echo "== $stage"
  result=build/$stage/test-results.xml
  rm -f "$result"
  if [ "$stage" = windows ] && ! have_windows_tools; then
    [ -z "${CI:-}" ] || results+=("$stage=$result")
    continue
  fi
  results+=("$stage=$result")
  (in_clean_environment bash -c '
    cmake --preset "$1" && cmake --build --preset "$1" &&
      exec ctest --preset "$1" --parallel "$(nproc)" --output-junit test-results.xml \
        --test-output-size-passed 65536' stage "$stage")
done </dev/null

[ "$windows_is_tested" = yes ] || complain_about_windows
in_clean_environment python3 tools/summarise_tests.py "${results[@]}"
