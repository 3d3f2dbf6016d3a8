# Sourced by run.sh and test.sh: installs Debian packages that are missing.
# Everything it prints goes to standard error.

# Prints the named packages that are not installed.
missing_packages() {
  local package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
      printf '%s\n' "$package"
  done
}

# Prints the name of the newest clang that the package lists know; nothing where
# they know none.
newest_clang_package() {
  apt-cache search --names-only '^clang-[0-9]+$' 2>/dev/null | cut -d ' ' -f 1 | sort -V | tail -n 1
}

# Runs a command as root: directly, or through sudo.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "Not root and no sudo: cannot run: $*" >&2
    return 1
  fi
}

# Installs those of the named packages that are missing; silent, fast and without
# network if none is. Fails if a package cannot be installed.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    echo "Not a Debian machine: please install the counterparts of: $*" >&2
    return 0
  fi
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}" >&2
  # A fresh machine has no package lists yet, so fetch them first. If that fails,
  # cached lists may do.
  as_root apt-get update -q </dev/null >&2 || true
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}" </dev/null >&2
}
