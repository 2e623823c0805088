#!/usr/bin/env bash
# with_cmake.sh CMAKE BUILD_TREE COMPILER VERSION
# Installs into a fresh place, moves the installed tree, and builds a project that finds it there.
set -euo pipefail
cmake=$1 tree=$2 compiler=$3 version=$4
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$tree" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/second"
"$cmake" -S "$source_dir" -B "$work/build" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$work/second" -DVRAD_EXPECTED="$version"
"$cmake" --build "$work/build"
"$work/build/consumer" "$version"
"$work/build/player"
