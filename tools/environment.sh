# Sourced by .ci/run and test.sh: the environment of a test run, so that no other
# setting of a machine or a user can make a test pass or fail.

# Only Debian's own programs: no second Python or compiler that comes first on
# somebody's PATH. Games are in a folder that root's PATH lacks.
system_path=/usr/sbin:/usr/bin:/sbin:/bin:/usr/games

# Variables that are kept if set: the home folder, the sign of continuous
# integration, what the package tools need to reach their servers, the kind of
# terminal, and a compiler cache.
kept_variables=(HOME CI TERM http_proxy https_proxy ftp_proxy no_proxy HTTP_PROXY HTTPS_PROXY
  FTP_PROXY NO_PROXY SSL_CERT_FILE SSL_CERT_DIR NODE_EXTRA_CA_CERTS
  CMAKE_CXX_COMPILER_LAUNCHER CCACHE_DIR CCACHE_BASEDIR CCACHE_NOHASHDIR CCACHE_MAXSIZE CCACHE_SLOPPINESS)

# in_clean_environment COMMAND...: executes the command with that environment, the
# usual umask, and no ignored signals.
in_clean_environment() {
  local name kept=()
  for name in "${kept_variables[@]}"; do
    [ -z "${!name+set}" ] || kept+=("$name=${!name}")
  done
  umask 022
  exec env -i --default-signal "${kept[@]}" PATH="$system_path" LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@"
}
