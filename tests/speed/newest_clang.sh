#!/bin/bash
# Builds the engine with the newest clang that is installed and runs the check
# named in the arguments with that program behind them. Exit status 77 without
# any clang++-N: the check says nothing then.
#
#   newest_clang.sh COMMAND [ARGUMENT...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

compiler=$(compgen -c clang++- | grep -xE 'clang\+\+-[0-9]+' | sort -V | tail -n 1) || exit 77
echo "$compiler"
cmake --preset clang -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build --preset clang
exec "$@" build/clang/shell/mirvo
