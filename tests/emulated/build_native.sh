#!/bin/sh
# Makes the release program of this machine and its book, if they are not up to
# date: build_native.sh SOURCE_ROOT
set -e
cd "$1"
[ -e build/release/build.ninja ] || cmake --preset release
exec cmake --build --preset release --target mirvo opening_book
