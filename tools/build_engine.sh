# Sourced by run.sh and play.sh, which set root to the source folder: builds the
# engine for this machine. Everything it prints goes to standard error.
build=$root/build/run

. "$root/tools/packages.sh"

configure_engine() {
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMIRVO_ARCH=native \
    -DMIRVO_TESTS=OFF </dev/null >&2
}

# What this machine's processor can do, as one number.
processor() {
  { grep -m1 -E '^(flags|Features)' /proc/cpuinfo 2>/dev/null || true; } | cksum
}

# Installs the compiler and the build tools where they are missing, and brings
# the build up to date: the engine is $build/shell/mirvo afterwards.
build_engine() {
  # The compiler's presence is what counts; package names matter only when
  # something has to be installed.
  if ! command -v g++ >/dev/null || ! command -v cmake >/dev/null || ! command -v ninja >/dev/null; then
    need_packages g++ cmake ninja-build
  fi

  # A build folder made under another path (a copied tree) or for another
  # processor is of no use here.
  if [ -f "$build/CMakeCache.txt" ] &&
    ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"; then
    rm -rf "$build"
  fi
  if [ -f "$build/processor" ] && [ "$(cat "$build/processor")" != "$(processor)" ]; then
    rm -rf "$build"
  fi
  if ! [ -f "$build/build.ninja" ] || ! grep -q '^MIRVO_ARCH:.*=native$' "$build/CMakeCache.txt"; then
    configure_engine
  fi
  [ -f "$build/processor" ] || processor >"$build/processor"
  cmake --build "$build" </dev/null >&2
}
