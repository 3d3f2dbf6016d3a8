#!/bin/bash
# Compares two commits of Mirvo on this machine: time to depth over the
# signature positions and perft (bench/compare_builds.py), each built from its own
# checkout with the same options. Search trees may differ; the positions in which
# they do are counted.
#
#   bench/compare_versions.sh [OLD [NEW [OPTION OF compare_builds.py...]]]
#
# OLD defaults to the first version that played under UCI, NEW to HEAD.
# CXXFLAGS=-march=native bench/compare_versions.sh builds both for this machine.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages g++ cmake ninja-build python3 util-linux git

# "Add input polling, dispatcher and the UCI front end"
first_version=de938ae
old=${1:-$first_version}
new=${2:-HEAD}

folder=$(mktemp -d)
cleanup() {
  git -C "$root" worktree remove --force "$folder/old" || true
  git -C "$root" worktree remove --force "$folder/new" || true
  rm -rf "$folder"
}
trap cleanup EXIT

build() {
  git -C "$root" worktree add --detach --quiet "$folder/$1" "$2"
  cmake -S "$folder/$1" -B "$folder/$1/build/bench" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DMIRVO_TESTS=OFF
  cmake --build "$folder/$1/build/bench" --target mirvo
}

build old "$old" >&2
build new "$new" >&2
python3 "$root/bench/compare_builds.py" "$old=$folder/old/build/bench/shell/mirvo" \
  "$new=$folder/new/build/bench/shell/mirvo" "${@:3}"
