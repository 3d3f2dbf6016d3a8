#!/bin/bash
# Compares the WebAssembly build under Node with the native release build on this
# machine, both with the tables of the web package (bench/compare_builds.py, which
# takes further options). Builds both.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages g++ cmake ninja-build python3 util-linux emscripten
cd "$root"
for preset in release web; do
  cmake --preset "$preset" -DMIRVO_TESTS=OFF >&2
done
cmake --build --preset release --target mirvo >&2
cmake --build --preset web --target package_folder >&2
# No book: "ucinewgame" would let it answer.
settings=$(mktemp)
trap "rm -f $settings" EXIT
sed s/UseOpeningBook=1/UseOpeningBook=0/ web/package/config.txt >"$settings"
python3 bench/compare_builds.py native=build/release/shell/mirvo \
  web=build/web/package/bin/mirvo.mjs --settings "$settings" "$@"
