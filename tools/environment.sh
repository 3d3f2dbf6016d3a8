# Sourced by .ci/run and test.sh: what a run of the tests takes from its
# surroundings, so that nothing else a machine or a person has set can make a
# test pass or fail.

# Debian's own programs only: no second Python or compiler that comes first on
# somebody's PATH. Its games are in a folder that root's PATH lacks.
system_path=/usr/sbin:/usr/bin:/sbin:/bin:/usr/games

# What stays if it is set: the home folder, the word that this is continuous
# integration, what the package tools need to reach their servers, the kind of
# terminal, and a compiler cache.
kept_variables=(HOME CI TERM http_proxy https_proxy ftp_proxy no_proxy HTTP_PROXY HTTPS_PROXY
  FTP_PROXY NO_PROXY SSL_CERT_FILE SSL_CERT_DIR CMAKE_CXX_COMPILER_LAUNCHER CCACHE_DIR
  CCACHE_BASEDIR CCACHE_NOHASHDIR CCACHE_MAXSIZE CCACHE_SLOPPINESS)

# in_clean_environment COMMAND...: becomes the command, with that environment,
# Debian's usual file rights, and no signal ignored.
in_clean_environment() {
  local name kept=()
  for name in "${kept_variables[@]}"; do
    [ -z "${!name+set}" ] || kept+=("$name=${!name}")
  done
  umask 022
  exec env -i --default-signal "${kept[@]}" PATH="$system_path" LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@"
}
