#!/bin/bash
# Looks for mistakes in the source text with cppcheck and clang-tidy.
#
#   tools/static_checks.sh                  everything (some minutes)
#   tools/static_checks.sh cppcheck         cppcheck over everything (seconds)
#   tools/static_checks.sh engine           clang-tidy over the engine
#   tools/static_checks.sh tests            clang-tidy over tests, fuzzers, benchmarks
#   tools/static_checks.sh --installed ...  installs nothing; exit status 77 when
#                                           a program is missing
#
# Exit status 0 when nothing was found. Suppressions, with their reasons: in
# .clang-tidy, tests/.clang-tidy and tools/cppcheck_suppressions.txt.
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
. tools/packages.sh

engine=(board book epd eval protocol search shell)
others=(tests fuzz bench)

run_cppcheck() {
  cppcheck --enable=warning,style,performance,portability --inline-suppr --std=c++20 \
    --library=googletest --suppressions-list=tools/cppcheck_suppressions.txt \
    --template='{file}:{line}: {severity}: {message} [{id}]' --error-exitcode=1 \
    -q -j "$(nproc)" -I . "${engine[@]}" "${others[@]}"
}

# run_clang_tidy FOLDER...: builds nothing; clang-tidy only needs to know how each
# file would be compiled by itself.
run_clang_tidy() {
  local folders
  folders=$(IFS='|'; echo "$*")
  cmake -S . -B build/static -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DMIRVO_BENCH=ON -DMIRVO_FUZZ=ON \
    -DCMAKE_UNITY_BUILD=OFF -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >build/static.log 2>&1 || {
    cat build/static.log
    return 1
  }
  run-clang-tidy-14 -quiet -clang-tidy-binary clang-tidy-14 -p build/static -j "$(nproc)" \
    "^$root/($folders)/" >build/static.txt 2>build/static.log
  local status=$?
  # Leaves out its commands and its counts of warnings in system headers.
  sed 's/\x1b\[[0-9;]*m//g' build/static.txt | grep -vE '^(clang-tidy-14 |$)'
  return $status
}

check() {
  case $1 in
    cppcheck) run_cppcheck ;;
    engine) run_clang_tidy "${engine[@]}" ;;
    tests) run_clang_tidy "${others[@]}" ;;
    *) echo "no such check: $1" && return 2 ;;
  esac
}

install=need_packages
if [ "${1:-}" = --installed ]; then
  install=false
  shift
fi
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(cppcheck engine tests)

programs=()
[[ " ${names[*]} " != *" cppcheck "* ]] || programs+=(cppcheck)
[ "${names[*]}" = cppcheck ] || programs+=(clang-tidy-14 run-clang-tidy-14)
for program in "${programs[@]}"; do
  command -v "$program" >/dev/null && continue
  $install cppcheck clang-tidy-14 g++ cmake ninja-build python3 libgtest-dev libbenchmark-dev &&
    break
  echo "SKIP: $program is not installed"
  exit 77
done

mkdir -p build
failures=0
for name in "${names[@]}"; do
  SECONDS=0
  if check "$name"; then
    echo "$name: clean ($SECONDS s)"
  else
    echo "$name: findings ($SECONDS s)"
    failures=$((failures + 1))
  fi
done
exit $((failures > 0))
