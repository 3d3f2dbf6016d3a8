#!/bin/bash
# Compares book building with polyglot's make-book on the same generated games in
# one run, and measures loading a full book. Installs polyglot and the benchmark
# library. Arguments: numbers of games.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages g++ cmake ninja-build python3 polyglot libgtest-dev libbenchmark-dev

build=$root/build/bench
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMIRVO_BENCH=ON \
  -DMIRVO_TESTS=OFF >&2
cmake --build "$build" --target mirvo mirvo_bench generate_games >&2
python3 "$root/bench/measure_books.py" "$build" "$@"
"$build/bench/mirvo_bench" --benchmark_filter='Book'
