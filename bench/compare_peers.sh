#!/bin/bash
# Compares Mirvo's speed with that of other engines on this machine, in turns on the
# same core: perft leaves and searched nodes per second of processor time. Installs
# these engines and leaves out those that cannot be installed.
#
#   bench/compare_peers.sh [baseline|native|pgo] [OPTION OF compare_peers.py...]
#
# The default build is native, which is also that of run.sh.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages python3 util-linux g++ cmake ninja-build
for peer in sjeng ethereal-chess toga2 gnuchess glaurung; do
  need_packages "$peer" || echo "$peer could not be installed" >&2
done

build=native
case "${1:-}" in
  baseline | native | pgo)
    build=$1
    shift
    ;;
esac
cd "$root"
case $build in
  pgo)
    program=build/pgo/shell/mirvo
    bench/build_pgo.sh >&2
    ;;
  *)
    preset=${build/baseline/release}
    program=build/$preset/shell/mirvo
    cmake --preset "$preset" >&2
    cmake --build --preset "$preset" --target mirvo >&2
    ;;
esac
exec python3 bench/compare_peers.py "$program" "$@"
