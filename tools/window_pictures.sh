#!/bin/bash
# Makes the pictures of docs/window.md anew, in docs/window, with a window on a
# screen that nobody sees: play.sh is played with by mouse and keyboard.
#
#   tools/window_pictures.sh [FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$root/tools/packages.sh"

need_packages xboard polyglot xvfb xdotool xclip imagemagick python3
/usr/bin/python3 "$root/tests/clients/window_pictures.py" "$root/play.sh" "${1:-$root/docs/window}"
ls -l "${1:-$root/docs/window}"
