#!/usr/bin/env bash
# with_pkg_config.sh CMAKE BUILD_TREE COMPILER VERSION
# Installs into a fresh place, moves the installed tree, and builds with what its .pc file says.
set -euo pipefail
cmake=$1 tree=$2 compiler=$3 version=$4
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$tree" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/second"
pc_dir=$(dirname "$(find "$work/second" -name vrad.pc)")
export PKG_CONFIG_PATH=$pc_dir
test "$(pkg-config --modversion vrad)" = "$version"
"$compiler" -std=c++20 $(pkg-config --cflags vrad) "$source_dir/main.cpp" \
  $(pkg-config --libs vrad) -Wl,-rpath,"$(pkg-config --variable=libdir vrad)" -o "$work/consumer"
"$work/consumer" "$version"
