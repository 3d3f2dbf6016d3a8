#!/bin/bash
# Profiles perft 4 and searches of signature positions to depth 7 under callgrind,
# which counts instead of timing and so works on a busy machine: instructions and
# cache misses per node, by function. The simulated caches have 32 kB each on the
# first level and 8 MB on the last, on any machine.
#
#   bench/profile.sh [NAME OF A SIGNATURE POSITION...]
#
# The default is the five positions of the instruction counts in tests/speed.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages g++ cmake ninja-build libgtest-dev libgmock-dev python3 valgrind
cd "$root"
[ $# -gt 0 ] || set -- open_sicilian open_kings castling_both_ways rook_ending pawn_ending

cmake --preset release >&2
cmake --build --preset release --target mirvo_workload >&2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Counts only inside one function, so that the program's start is left out.
profile() {
  valgrind --tool=callgrind --cache-sim=yes --I1=32768,8,64 --D1=32768,8,64 \
    --LL=8388608,16,64 "--toggle-collect=$2" "--callgrind-out-file=$folder/$1" \
    build/release/tests/speed/mirvo_workload "${@:3}" >"$folder/$1.nodes" 2>"$folder/$1.log" ||
    { cat "$folder/$1.log" >&2; return 1; }
  callgrind_annotate --show=Ir,D1mr,DLmr --threshold=100 "$folder/$1" >"$folder/$1.txt"
  printf '%s\n\n' "$1"
  python3 bench/profile_summary.py "$folder/$1.txt" "$(awk '{print $2}' "$folder/$1.nodes")"
  echo
}
profile perft 'mirvo::RunPerft(*' perft 4
profile search 'mirvo::Think(*' search "$@"
