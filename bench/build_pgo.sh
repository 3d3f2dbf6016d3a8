#!/bin/bash
# Builds Mirvo for this machine with profile-guided optimisation: builds an
# instrumented program, runs searches and perft with it, and builds again with the
# profile. Takes two builds and a few seconds of runs.
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
# Profiles of earlier programs do not fit this one.
find "$build" -name '*.gcda' -delete

# Runs the training, which leaves the profile beside the objects.
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
