#!/bin/bash
# Measures the search with tables of 1 MB to 1,024 MB: raw numbers to
# bench/data/scale.csv, the plot to docs/scale.svg, the table to standard output.
# Uses the native build; arguments go to scale.py (--help lists them).
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages python3 util-linux g++ cmake ninja-build
cd "$root"
cmake --preset native >&2
cmake --build --preset native --target mirvo >&2
exec python3 bench/scale.py build/native/shell/mirvo bench/data/scale.csv \
  --plot docs/scale.svg "$@"
