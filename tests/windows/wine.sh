# Sourced with the prefix (the folder with Wine's own files) as first argument:
# finds Wine and starts and ends a session of it. All programs of a session share
# one server, which is started first. A server that a program starts itself ends
# with that program, and the next program waits for that end and a new start.

WINEPREFIX=$1
export WINEPREFIX
# No messages from Wine, no screen, browser or .NET.
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

# With address space randomisation one start in a few thousand finds the page at
# 0x7ffe0000 taken by its own heap and ends at once with status 1. If that happens
# to one of Wine's services, everybody waits for minutes. So randomisation is
# switched off where the system allows it.
if setarch -R true 2>/dev/null; then
  fixed_places="setarch -R"
else
  fixed_places=
fi

# Seconds that the server stays after its last program.
server_stays=600
# Seconds for a start. One that has to create the prefix takes about ten, and a few
# times as long on a busy machine.
start_limit=120
stop_limit=30

# Runs a small program; fails if it does not succeed in time.
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

# Removes an incomplete prefix.
clear_prefix() {
  rm -rf "$WINEPREFIX/ready" "$WINEPREFIX/drive_c" "$WINEPREFIX/dosdevices" \
    "$WINEPREFIX"/*.reg "$WINEPREFIX/.update-timestamp"
}

# Status of a second server where one is already running.
already_there=2
start_server() {
  "$server" -p"$server_stays" >/dev/null 2>&1 </dev/null 9>&-
}

# Starts a server if none is running, and waits for Wine's services too. The second
# attempt begins with an empty prefix.
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

# Runs one of the functions above under a lock.
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
