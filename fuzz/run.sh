#!/bin/bash
# Runs fuzzers one after the other, each for the same time, with the stored
# corpus to begin with. What is found goes to build/fuzz/found/NAME: new inputs
# to "new", failures to "failed". The last lines printed tell how each ended.
#
#   fuzz/run.sh 660                  all of them, 11 minutes each
#   fuzz/run.sh 60 fen uci           two of them
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
seconds=${1:?seconds for each fuzzer}
shift
names=("$@")
[ ${#names[@]} -gt 0 ] ||
  names=(fen coordinates algebraic config command_line suite uci xboard process games book_file)

cmake --preset fuzz >/dev/null && cmake --build --preset fuzz || exit 1

failures=0
summary=()
for name in "${names[@]}"; do
  found=build/fuzz/found/$name
  mkdir -p "$found/new" "$found/failed"
  case $name in
    games) seeds=tests/book/corpus/games ;;
    book_file) seeds=tests/book/corpus/books ;;
    *) seeds=tests/fuzz/corpus/$name ;;
  esac
  options=(-max_total_time="$seconds" -max_len=1024 -rss_limit_mb=2048 -close_fd_mask=1
    -print_final_stats=1 -artifact_prefix="$found/failed/")
  # When it comes to speak XBoard the engine takes the alarm signal, by which
  # libFuzzer would notice an input that takes too long.
  [ "$name" != process ] || options+=(-timeout=0)
  [ ! -e "fuzz/dictionaries/$name.dict" ] || options+=(-dict="fuzz/dictionaries/$name.dict")
  nice -n 15 "build/fuzz/fuzz/fuzz_$name" "${options[@]}" "$found/new" "$seeds" >"$found/log" 2>&1
  status=$?
  [ $status -eq 0 ] || failures=$((failures + 1))
  summary+=("$name: status $status, $(grep number_of_executed_units "$found/log")")
done
printf '%s\n' "${summary[@]}"
exit $((failures > 0))
