#!/bin/bash
# Runs fuzzers one after the other, each for the same time or the same number of
# inputs, starting from the stored corpus and what earlier runs found. Results go
# to build/fuzz/found/NAME: new inputs to "new", failures to "failed". The last
# lines printed say how each fuzzer ended.
#
#   fuzz/run.sh 660                    all of them, 11 minutes each
#   fuzz/run.sh 60 fen uci             two of them
#   fuzz/run.sh inputs=1000000 suite   a million inputs
#   fuzz/run.sh round                  20 million inputs for the readers, one
#                                      million for the sessions
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
amount=${1:?seconds, inputs=NUMBER or round}
shift
names=("$@")
[ ${#names[@]} -gt 0 ] ||
  names=(fen coordinates algebraic config command_line suite uci xboard process games book_file)

# The inputs of a full round: faster fuzzers get more.
inputs_of_a_round() {
  case $1 in
    algebraic | config) echo 4000000 ;;
    command_line | coordinates | book_file) echo 3000000 ;;
    fen) echo 2000000 ;;
    uci | games | suite) echo 500000 ;;
    xboard) echo 350000 ;;
    process) echo 150000 ;;
  esac
}

# When a fuzzer ends, as libFuzzer's option.
limit_of() {
  case $amount in
    round) echo "-runs=$(inputs_of_a_round "$1")" ;;
    inputs=*) echo "-runs=${amount#inputs=}" ;;
    *) echo "-max_total_time=$amount" ;;
  esac
}

cmake --preset fuzz >/dev/null && cmake --build --preset fuzz || exit 1

# Keeps the exercises' files in memory. Limits the quarantine of freed memory, so
# that most memory is reused.
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm
export ASAN_OPTIONS=quarantine_size_mb=8:malloc_context_size=4

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
  # Long inputs take long: a session for every line, a game for every move.
  case $name in
    uci | xboard | process) length=256 ;;
    games | suite) length=512 ;;
    *) length=1024 ;;
  esac
  options=("$(limit_of "$name")" -max_len=$length -rss_limit_mb=2048 -close_fd_mask=1 -entropic=0 -reload=0
    -print_final_stats=1 -artifact_prefix="$found/failed/")
  # Under XBoard the engine uses the alarm signal, with which libFuzzer would notice
  # slow inputs.
  [ "$name" != process ] || options+=(-timeout=0)
  [ ! -e "fuzz/dictionaries/$name.dict" ] || options+=(-dict="fuzz/dictionaries/$name.dict")
  nice -n 15 "build/fuzz/fuzz/fuzz_$name" "${options[@]}" "$found/new" "$seeds" >"$found/log" 2>&1
  status=$?
  [ $status -eq 0 ] || failures=$((failures + 1))
  summary+=("$name: status $status, $(grep number_of_executed_units "$found/log")")
done
printf '%s\n' "${summary[@]}"
exit $((failures > 0))
