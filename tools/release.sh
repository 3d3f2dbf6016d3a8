#!/bin/bash
# Makes every package of a release out of what is committed, twice, in two fresh
# clones at different places, and compares: equal bytes or no release. Then each
# package is unpacked and its engine has to search the node signature.
# docs/releasing.md tells the whole way.
#
#   tools/release.sh                     all that can be made here
#   tools/release.sh amd64 source        these parts only
#
#   --once              one clone only: nothing is compared
#   --without-tests     without the tests of the other byte order
#   --output FOLDER     default: build/release-files
#
# Parts: amd64 arm64 windows npm page source. Exit status 0 when all went well.
set -uo pipefail

here=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
. "$here/tools/packages.sh"
. "$here/tools/environment.sh"
. "$here/web/packages.sh"

say() { printf '==== %s\n' "$*"; }
give_up() {
  echo "$*" >&2
  exit 1
}

# ---- Inside a clone, in a clean environment, with nothing compiled before.

# What CMake and CPack make of one preset.
make_packages() {
  local build=build/$1
  cmake --preset "$1" -DMIRVO_TESTS=OFF && cmake --build --preset "$1" --target all &&
    cpack --config "$build/CPackConfig.cmake" -B "$PWD/build/made-$1" || return 1
  find "build/made-$1" -maxdepth 1 -name 'mirvo*' -type f -exec mv -t "$output" {} +
}

make_windows() {
  make_packages windows
  local status=$?
  tests/windows/wine_session "$PWD/build/windows/wine" stop
  return $status
}

# The engine for the web, its package, and the page with its zip.
make_web() {
  [ -e build/web/package/mirvo.wasm ] ||
    { cmake --preset web -DMIRVO_TESTS=OFF && cmake --build --preset web; }
}

make_npm() { make_web && (cd build/web/package && npm pack --pack-destination "$output"); }

make_page() { make_web && cp build/web/mirvo-web.zip "$output"; }

make_source() {
  local version
  version=$(sed -n 's/^project(mirvo VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  git archive --format=tar --prefix="mirvo-$version/" HEAD | gzip -9n >"$output/mirvo-$version.tar.gz"
}

# Archives that are no .deb are packed anew: CPack, npm and zip note who made them.
pack_anew() {
  local seconds
  seconds=$(date --utc --date "$(sed -n 's/^ -- .*>  //p;T;q' packaging/changelog.Debian)" +%s)
  find "$output" '(' -name '*.zip' -o -name '*.tgz' -o -name '*.tar.gz' ')' \
    -exec python3 tools/repack.py "$seconds" {} +
}

make_parts() {
  local part
  mkdir -p "$output"
  for part in "$@"; do
    case $part in
      amd64) make_packages package ;;
      arm64) make_packages arm64 ;;
      *) "make_$part" ;;
    esac >"$log.$part" 2>&1 || {
      tail -30 "$log.$part" >&2
      give_up "$part could not be made; all of it is in $log.$part"
    }
    say "made $part"
  done
  pack_anew && (cd "$output" && sha256sum -- * >SHA256SUMS)
}

if [ "${1:-}" = --inside ]; then
  output=$2 log=$3
  make_parts "${@:4}"
  exit
fi

# ---- Outside.

output=$here/build/release-files
twice=yes
tests=yes
parts=()
while [ $# -gt 0 ]; do
  case $1 in
    --once) twice=no ;;
    --without-tests) tests=no ;;
    --output) output=$(readlink -f "${2:?--output needs a folder}") && shift ;;
    amd64 | arm64 | windows | npm | page | source) parts+=("$1") ;;
    *) give_up "unknown word: $1 (see the head of $0)" ;;
  esac
  shift
done
if [ ${#parts[@]} -eq 0 ]; then
  parts=(amd64 arm64 windows npm page source)
fi
wanted() { [[ " ${parts[*]} " == *" $1 "* ]]; }

packages=(g++ cmake ninja-build git python3 dpkg-dev file binutils lintian)
wanted arm64 && packages+=(g++-aarch64-linux-gnu qemu-user)
wanted windows && packages+=(g++-mingw-w64-x86-64-posix wine64)
need_packages "${packages[@]}" || give_up "some packages could not be installed"
if wanted npm || wanted page; then
  need_page_packages || give_up "what builds for the web could not be installed"
fi

[ -z "$(git -C "$here" status --porcelain)" ] ||
  say "changes that are not committed stay out"
commit=$(git -C "$here" rev-parse HEAD) || exit 1
scratch=$(mktemp -d /var/tmp/mirvo-release-XXXXXX)
trap 'rm -rf "$scratch"' EXIT
logs=$here/build/logs/release
mkdir -p "$logs"

# make_in CLONE: everything, in a new clone of that name.
make_in() {
  local clone=$scratch/$1
  mkdir -p "$(dirname "$clone")"
  git clone -q --no-hardlinks "$here" "$clone" &&
    git -C "$clone" checkout -q --detach "$commit" || return 1
  say "making ${parts[*]} in $clone"
  (cd "$clone" && unset CMAKE_CXX_COMPILER_LAUNCHER &&
    in_clean_environment tools/release.sh --inside "$scratch/made-${1//\//-}" \
      "$logs/${1//\//-}" "${parts[@]}")
}

if [ $tests = yes ]; then
  "$here/test.sh" s390x || give_up "the tests of the other byte order fail"
fi
make_in mirvo || exit 1
if [ $twice = yes ]; then
  make_in "another place/for mirvo" || exit 1
  diff "$scratch/made-mirvo/SHA256SUMS" "$scratch/made-another place-for mirvo/SHA256SUMS" ||
    give_up "the packages depend on where they are made"
  say "equal from two places"
fi
rm -rf "$output"
mkdir -p "$(dirname "$output")" && cp -r "$scratch/made-mirvo" "$output" || exit 1
(in_clean_environment python3 "$scratch/mirvo/tests/packages/check_release.py" "$output") ||
  give_up "a package is not what it should be"
cat "$output/SHA256SUMS"
say "the release is in $output"
