#!/bin/bash
# Compares Mirvo's speed with that of other engines on this machine, one after
# the other on the same core: perft leaves and searched nodes per second of
# processor time. Installs the engines it compares with. Arguments go to
# compare_peers.py (--help lists them).
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"
need_packages python3 util-linux sjeng ethereal-chess toga2 gnuchess glaurung

(cd "$(mktemp -d)" && "$root/run.sh" -test >&2) # builds what run.sh runs
exec python3 "$root/bench/compare_peers.py" "$root/build/run/shell/mirvo" "$@"
