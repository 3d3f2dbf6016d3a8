#!/bin/bash
# Builds Mirvo for this machine, optimised by a profile of searches and perft:
# builds a program that counts, lets it work, and builds again by the counts.
# Takes two builds and a few seconds of work.
#
#   bench/build_pgo.sh [FOLDER [CMAKE OPTION...]]
#
# The folder is build/pgo if none is named; with build/run, ./run.sh starts what
# was built here. Options are for instance -DMIRVO_ARCH=x86-64-v3.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages g++ cmake ninja-build
build=$(realpath -m "${1:-$root/build/pgo}")
cd "$root"

build_with_preset() {
  cmake --preset "$1" -B "$build" -DMIRVO_TESTS=OFF "${@:3}"
  cmake --build "$build" --target "$2"
}

build_with_preset pgo-generate mirvo "${@:2}"
# Counts of earlier programs do not belong to this one.
find "$build" -name '*.gcda' -delete

# Leaves the counts of some work beside the objects.
train() {
  local mirvo=$build/shell/mirvo folder
  folder=$(mktemp -d)
  cd "$folder"
  # The signature positions as a test suite, without solutions.
  awk '/\|/ && !/^#/ {split($0, part, " [|] "); print part[2] " - bm; id \"" part[1] "\";"}' \
    "$root/tests/data/signature.txt" >positions.epd
  "$mirvo" -quiet -depth 8 -analyze positions.epd
  "$mirvo" -perft 5
  "$mirvo" -perft 4 r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq
  rm -r "$folder"
}
(train) >/dev/null

build_with_preset pgo all "${@:2}"
