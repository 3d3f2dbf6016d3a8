#!/bin/bash
# Builds the page to play on and serves it on this machine alone: installs what is
# missing, builds the engine for the web and the page around it, prints the address.
#
#   --port N       the port (8000 if it is free, or else any); 0 takes any free one
#   --no-build     serves what has been built before
#   --no-isolation without the headers that let "Move now" reach a thinking engine
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root"
. tools/packages.sh
. web/packages.sh

build=true
options=()
while [ $# -gt 0 ]; do
  case $1 in
    --no-build) build=false ;;
    --no-isolation) options+=(--no-isolation) ;;
    --port)
      [[ ${2:-} =~ ^[0-9]+$ ]] || { echo 'serve.sh: --port needs a number' >&2; exit 2; }
      options+=(--port "$2")
      shift
      ;;
    --help)
      sed -n '2,/^set/{s/^# \?//;/^set/!p}' "${BASH_SOURCE[0]}"
      exit
      ;;
    *)
      echo "serve.sh: unknown option $1 (--help tells them)" >&2
      exit 2
      ;;
  esac
  shift
done

if $build; then
  need_page_packages || {
    echo 'serve.sh: emscripten, Node or npm cannot be installed here' >&2
    exit 1
  }
  # Everything that the build says is for the eye; standard output is the address.
  {
    cmake --preset web
    cmake --build --preset web --target page
  } </dev/null >&2
fi
[ -f build/web/page/index.html ] || {
  echo 'serve.sh: nothing has been built yet; leave --no-build out' >&2
  exit 1
}
exec node web/page/serve.mjs "${options[@]}" build/web/page
