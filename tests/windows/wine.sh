# Sourced with the prefix, the folder with Wine's own files, as first argument:
# which Wine there is, and how one session of it is started and ended. All
# programs of a session share one server, which is started before them. A
# server that a program starts for itself ends with that program, and the next
# one waits for the end and the new start.

WINEPREFIX=$1
export WINEPREFIX
# Neither messages of Wine's own nor a screen, browser or .NET.
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine || true)
server=/usr/lib/wine/wineserver
[ -x "$server" ] || server=wineserver
if [ -z "$wine" ]; then
  echo "Wine is not installed: nothing runs here" >&2
  exit 127
fi

# Without a loader that keeps it free, one start in a few thousand finds the
# page at 0x7ffe0000 taken by its own randomly placed heap, and ends at once
# with status 1; where that hits one of Wine's services, everybody waits minutes
# for it. So nothing is placed at random, if the system allows to ask for that.
if setarch -R true 2>/dev/null; then
  fixed_places="setarch -R"
else
  fixed_places=
fi

# The server stays for so many seconds after its last program.
server_stays=600
# A start that has to make the prefix takes some ten seconds, on a busy machine
# a few times as many.
start_limit=120
stop_limit=30

# Runs one small program; fails when that does not end in time as it should.
try_program() {
  timeout -k 5 "$start_limit" $fixed_places "$wine" cmd /c 'exit 7' \
    >/dev/null 2>&1 </dev/null 9>&-
  [ $? -eq 7 ]
}

# Ends the server with all its programs, if there is one.
stop_session() {
  timeout -k 5 "$stop_limit" "$server" -k >/dev/null 2>&1 </dev/null 9>&- || true
  timeout -k 5 "$stop_limit" "$server" -w >/dev/null 2>&1 </dev/null 9>&- || {
    echo "Wine's server in $WINEPREFIX does not end" >&2
    return 1
  }
}

# Removes a prefix that was left half made.
clear_prefix() {
  rm -rf "$WINEPREFIX/ready" "$WINEPREFIX/drive_c" "$WINEPREFIX/dosdevices" \
    "$WINEPREFIX"/*.reg "$WINEPREFIX/.update-timestamp"
}

# A server that runs already turns a second one away with this status.
already_there=2
start_server() {
  "$server" -p"$server_stays" >/dev/null 2>&1 </dev/null 9>&-
}

# Starts a server where none runs, and waits until Wine's services are there
# too. The second attempt begins with an empty prefix.
start_session() {
  start_server || return $(($? != already_there))
  for attempt in first second; do
    [ -e "$WINEPREFIX/ready" ] || clear_prefix
    if try_program && try_program; then
      : >"$WINEPREFIX/ready"
      return 0
    fi
    echo "Wine did not start in $WINEPREFIX, $attempt attempt" >&2
    rm -f "$WINEPREFIX/ready"
    stop_session
    [ "$attempt" = second ] || start_server || return 1
  done
  return 1
}

# Runs one of the functions above while no other process does.
one_at_a_time() {
  mkdir -p "$WINEPREFIX"
  (
    flock -w 300 9 || {
      echo "Another process has been starting Wine in $WINEPREFIX for minutes" >&2
      exit 1
    }
    "$@"
  ) 9>"$WINEPREFIX/lock"
}
