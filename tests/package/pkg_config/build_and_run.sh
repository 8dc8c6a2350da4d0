#!/usr/bin/env bash
# Builds and runs the programs with nothing but a compiler and pkg-config.
#
#   build_and_run.sh CC CXX PREFIX
set -euo pipefail
cd "$(dirname "$0")/.."
cc=$1 cxx=$2 prefix=$3
packages=$(find "$prefix" -name pkgconfig -type d)
export PKG_CONFIG_PATH=$packages
LD_LIBRARY_PATH=$(pkg-config --variable=libdir mesh_l2vpn)
export LD_LIBRARY_PATH

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
run() {
  local program=$work/program
  "${@:2}" -o "$program" -Wall -Wextra -Werror $(pkg-config --cflags --libs $1)
  "$program"
}
run mesh_l2vpn "$cc" -std=c99 -pedantic roundtrip.c
run mesh_l2vpn "$cxx" -std=c++17 -pedantic roundtrip.cpp
if pkg-config --exists mesh_l2vpn_workstation; then
  run "mesh_l2vpn mesh_l2vpn_workstation" "$cc" -std=c99 send_and_receive.c
fi
