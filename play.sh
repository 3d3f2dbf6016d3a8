#!/bin/bash
# A game against Mirvo in a window: installs what is missing, builds the engine
# for this machine, and opens the window. --help tells the options.
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
export MIRVO_COMMAND=play.sh

. "$root/tools/build_engine.sh"

if [ "${1:-}" = --browser ]; then
  shift
  exec "$root/web/serve.sh" "$@"
fi

window=$root/packaging/mirvo-window
if [[ " $* " == *' --help '* ]]; then
  "$window" --help
  echo '  --browser       alone: serves a page to play on instead, on this machine only'
  exit
fi

# Mistakes are told before anything is installed.
"$window" --check "$@" || {
  status=$?
  [ -n "${DISPLAY:-}" ] || echo 'play.sh: --browser serves a page to play on, for a browser' >&2
  exit $status
}
need_packages xboard polyglot || {
  echo "play.sh: xboard and polyglot cannot be installed here; ask who looks after this machine" >&2
  exit 1
}
build_engine
# The same files as after an installation, in a folder of their own.
installed=$build/installed
cmake --install "$build" --prefix "$installed" </dev/null >/dev/null
exec "$installed/bin/mirvo-window" "$@"
