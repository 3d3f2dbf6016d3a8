#!/bin/bash
# Builds Mirvo for this machine, if needed, and starts it. Arguments are the
# engine's own. Standard output carries the engine's text only, so an interface
# can use this script as its engine command.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)

. "$root/tools/build_engine.sh"

build_engine
exec "$build/shell/mirvo" "$@"
