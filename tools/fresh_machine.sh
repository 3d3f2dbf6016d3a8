#!/bin/bash
# Makes a minimal Debian 12 machine in a folder, clones the committed state of this
# repository into it, and follows the README there: run.sh as root, which installs
# the compiler; run.sh as an ordinary user without sudo; play.sh as root; then
# test.sh as root. To be run once before each release.
#
#   tools/fresh_machine.sh                    all four
#   tools/fresh_machine.sh run                both starts of run.sh only
#   tools/fresh_machine.sh window             play.sh only: from the clone to the
#                                             first move, with the time it took
#   tools/fresh_machine.sh test [WORD...]     test.sh only, with these arguments
#   tools/fresh_machine.sh shell              a shell there, for inspection
#
#   --folder FOLDER   where the machine is made (default: a folder in /var/tmp)
#   --keep            keeps it; the next call with the same folder uses it again,
#                     with the packages installed so far
#
# It needs root or sudo, about 4 GB, and the package servers that this machine's apt
# is configured for. All mounts are in a separate name space, so they and every
# process end with the script, however that ends. Exit status 0 if all went well.
set -uo pipefail

here=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$here/tools/packages.sh"

release=bookworm
machine=
keep=no
player=player
npm_certificates=/etc/certificates-outside.pem

say() { printf '==== %s\n' "$*"; }
give_up() {
  echo "$*" >&2
  exit 1
}

# ---- Outside: needs no root rights until the machine is made.

read_options() {
  while [ $# -gt 0 ]; do
    case $1 in
      --folder) machine=${2:?--folder needs a folder} && shift ;;
      --keep) keep=yes ;;
      run | window | test | shell) action=$1 && shift && words=("$@") && return ;;
      *) give_up "unknown word: $1 (see the head of $0)" ;;
    esac
    shift
  done
}

# The server from which this machine's apt gets Debian's packages.
package_server() {
  apt-get indextargets --format '$(CODENAME) $(RELEASE) $(REPO_URI)' |
    awk -v name="$release" '$1 == name || $2 == name { print $3; exit }'
}

# Settings for the new machine's apt: the same servers for this release and the way
# to them (proxies, certificates, checks of dates), nothing else.
write_apt_settings() {
  apt-get indextargets --format '$(RELEASE) $(REPO_URI) $(COMPONENT)' |
    awk -v name="$release" 'index($1, name) == 1 && !seen[$0]++ {
      print "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]", $2, $1, $3 }' \
      >"$1/sources.list"
  apt-config dump Acquire | grep -iE '::(proxy|verify|ca|crl|check-|allow|no-cache)[^ ]* "[^"]' \
    >"$1/apt.conf"
  echo 'APT::Install-Recommends "false";' >>"$1/apt.conf"
}

# Certificate files that the settings name.
certificate_files() {
  sed -nE 's/^[^ ]*::ca(info|path) "(.*)";$/\2/Ip' "$1/apt.conf"
}

prepare() {
  need_packages debootstrap git util-linux || give_up "debootstrap is needed"
  case $action in
    window | everything) need_packages xvfb xdotool || give_up "xvfb and xdotool are needed" ;;
  esac
  [ -n "$machine" ] || machine=$(mktemp -d /var/tmp/mirvo-fresh-machine-XXXXXX)
  mkdir -p "$machine" || exit 1
  machine=$(cd "$machine" && pwd)
  [ "$machine" != / ] || give_up "not the root folder"
  kit=$machine.kit
  rm -rf "$kit" && mkdir "$kit" || exit 1
  server=$(package_server)
  [ -n "$server" ] || give_up "this machine's apt knows no server for Debian $release"
  write_apt_settings "$kit"
  git clone -q --no-hardlinks "$here" "$kit/mirvo" || exit 1
  say "commit $(git -C "$kit/mirvo" log -1 --format='%h %s')"
  [ -z "$(git -C "$here" status --porcelain)" ] || say "changes that are not committed stay out"
}

tidy_up() {
  rm -rf "$kit"
  if [ "$keep" = yes ]; then
    say "the machine stays in $machine"
  else
    as_root rm -rf --one-file-system "$machine"
  fi
}

# ---- Inside the name space, as root.

make_machine() {
  if [ -e "$machine/made" ]; then
    say "using the machine in $machine, which is no longer fresh"
    return
  fi
  [ -z "$(ls -A "$machine")" ] || give_up "$machine is neither empty nor a machine made here"
  say "making a minimal Debian $release in $machine"
  debootstrap --variant=minbase "$release" "$machine" "$server" >"$kit/debootstrap.log" 2>&1 || {
    tail -20 "$kit/debootstrap.log" >&2
    give_up "debootstrap failed"
  }
  cp "$kit/sources.list" "$machine/etc/apt/sources.list"
  cp "$kit/apt.conf" "$machine/etc/apt/apt.conf.d/90outside"
  local file
  certificate_files "$kit" | while read -r file; do
    mkdir -p "$machine$(dirname "$file")" && cp -rL "$file" "$machine$file"
  done
  chroot "$machine" useradd --create-home --shell /bin/bash "$player" || exit 1
  touch "$machine/made"
}

mount_system() {
  cp -L /etc/resolv.conf "$machine/etc/resolv.conf" 2>/dev/null
  cp -L /etc/hosts "$machine/etc/hosts" 2>/dev/null
  mount -t proc proc "$machine/proc" &&
    mount -t sysfs -o ro sysfs "$machine/sys" &&
    mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$machine/dev/pts" &&
    mount -t tmpfs -o mode=1777 tmpfs "$machine/dev/shm" || give_up "cannot mount"
  ln -sf pts/ptmx "$machine/dev/ptmx"
  # npm trusts what this machine trusts.
  cp -L "${NODE_EXTRA_CA_CERTS:-/etc/ssl/certs/ca-certificates.crt}" "$machine$npm_certificates" \
    2>/dev/null || npm_certificates=
}

# inside USER COMMAND: runs a shell command as that user, with a login environment
# and the way to the package servers.
inside() {
  local home=/root name way=()
  [ "$1" = root ] || home=/home/$1
  for name in http_proxy https_proxy no_proxy HTTP_PROXY HTTPS_PROXY NO_PROXY; do
    [ -z "${!name+set}" ] || way+=("$name=${!name}")
  done
  [ -z "$npm_certificates" ] || way+=("NODE_EXTRA_CA_CERTS=$npm_certificates")
  chroot --userspec="$1" "$machine" /usr/bin/env -i HOME="$home" USER="$1" LOGNAME="$1" \
    TERM="${TERM:-dumb}" "${way[@]}" \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin bash -c "cd && $2"
}

# Puts a new clone into the user's home folder.
put_clone() {
  local home=/root
  [ "$1" = root ] || home=/home/$1
  rm -rf "${machine:?}$home/mirvo"
  cp -r "$kit/mirvo" "$machine$home/mirvo" && inside root "chown -R $1: $home/mirvo"
}

# A short UCI session; "quit" follows the move, because it would end the search.
session='cd mirvo && coproc engine { ./run.sh; }
  program=$engine_PID
  printf "uci\nposition startpos\ngo depth 8\n" >&"${engine[1]}"
  while read -r line <&"${engine[0]}"; do
    echo "$line"
    case $line in bestmove*) echo quit >&"${engine[1]}" ;; esac
  done
  wait "$program"'

# play USER: run.sh in a new clone. The session must begin and end as the README
# says, and only the engine may write to standard output.
play() {
  local log=$kit/run-$1.txt
  say "run.sh as $1"
  put_clone "$1" || return 1
  inside "$1" "$session" >"$log" 2>"$log.errors"
  local status=$?
  sed 's/^/  /' "$log"
  if [ $status -eq 0 ] && head -1 "$log" | grep -q '^Welcome to Mirvo' &&
    grep -qx uciok "$log" && tail -1 "$log" | grep -q '^bestmove [a-h][1-8]'; then
    say "run.sh as $1: well"
    return
  fi
  tail -30 "$log.errors" >&2
  say "run.sh as $1: FAILED (status $status)"
  return 1
}

play_both() {
  play root || return 1
  inside "$player" '! command -v sudo >/dev/null' || say "(this machine has sudo)"
  play "$player"
}

# An X server of this side, which programs inside reach too: they share its
# network. Its number goes into $screen.
open_screen() {
  local number=$kit/screen
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$number" 2>/dev/null &
  while ! [ -s "$number" ]; do
    kill -0 $! || return 1
    sleep 0.1
  done
  screen=:$(cat "$number")
}

# play.sh in a new clone, until the engine has made a move in its window.
play_window() {
  say "play.sh"
  local screen log=$machine/root/polyglot.log printed=$kit/window.txt
  open_screen && put_clone root || return 1
  rm -f "$log"
  SECONDS=0
  inside root "cd mirvo && DISPLAY=$screen ./play.sh -- -adapterCommand \
    'polyglot -noini -ec \"%fcp\" -ed \"%fd\" -log true -lf /root/polyglot.log'" >"$printed" 2>&1 &
  local program=$!
  until grep -q 'Adapter->GUI: move ' "$log" 2>/dev/null; do
    kill -0 $program 2>/dev/null && [ $SECONDS -lt 900 ] || {
      tail -30 "$printed" >&2
      say "play.sh: FAILED"
      return 1
    }
    # "Machine White", once there is a window.
    DISPLAY=$screen xdotool search --onlyvisible --class xboard windowfocus key ctrl+w 2>/dev/null
    sleep 0.5
  done
  local seconds=$SECONDS
  # Closed as a person does it, so that the processor time of all comes together.
  while kill -0 $program 2>/dev/null; do
    DISPLAY=$screen xdotool search --onlyvisible --class xboard windowfocus key ctrl+q 2>/dev/null
    sleep 0.5
  done
  times >"$kit/times"
  say "play.sh: well, $seconds s from the clone to the first move;" \
    "processor time (user, system): $(tail -1 "$kit/times")"
}

run_tests() {
  local quoted=
  [ ${#words[@]} -eq 0 ] || printf -v quoted '%q ' "${words[@]}"
  say "test.sh $quoted"
  put_clone root || return 1
  inside root "cd mirvo && ./test.sh $quoted"
  local status=$?
  say "test.sh: $([ $status -eq 0 ] && echo well || echo FAILED)"
  return $status
}

work_inside() {
  make_machine && mount_system || return 1
  case $action in
    run) play_both ;;
    window) play_window ;;
    test) run_tests ;;
    shell) put_clone root && inside root bash ;;
    everything) play_both && play_window && run_tests ;;
  esac
}

# ----

if [ "${1:-}" = --inside ]; then
  shift
  machine=$1 kit=$2 server=$3 action=$4
  words=("${@:5}")
  work_inside
  exit
fi

action=everything
words=()
read_options "$@"
prepare
trap tidy_up EXIT
as_root unshare --mount --propagation private --pid --fork --kill-child \
  "$here/tools/fresh_machine.sh" --inside "$machine" "$kit" "$server" "$action" "${words[@]}"
