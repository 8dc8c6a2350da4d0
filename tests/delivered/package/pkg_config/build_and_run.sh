#!/usr/bin/env bash
# Builds and runs the programs with nothing but a compiler and pkg-config.
#
#   build_and_run.sh CC CXX PREFIX
set -euo pipefail
cd "$(dirname "$0")/.."
cc=$1 cxx=$2 prefix=$3
PKG_CONFIG_PATH=$(find "$prefix" -name pkgconfig -type d)
export PKG_CONFIG_PATH
LD_LIBRARY_PATH=$(pkg-config --variable=libdir mesh_l2vpn)
export LD_LIBRARY_PATH

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Builds a program with the flags of the packages, which `packages` lists, and runs it.
run() {
  local program=$work/program flags
  read -ra flags < <(pkg-config --cflags --libs "${packages[@]}")
  "$@" -o "$program" -Wall -Wextra -Werror "${flags[@]}"
  "$program"
}
packages=(mesh_l2vpn)
run "$cc" -std=c99 -pedantic roundtrip.c
run "$cxx" -std=c++17 -pedantic roundtrip.cpp
"$cc" -std=c99 -pedantic -o "$work/inspect" -Wall -Wextra -Werror ../../../examples/inspect_message.c \
  $(pkg-config --cflags --libs mesh_l2vpn_inspect)
"$work/inspect" 0xFEB5D38D ../../../examples/key.bin | grep -q 'receivers accept it'
if pkg-config --exists mesh_l2vpn_workstation; then
  packages+=(mesh_l2vpn_workstation)
  run "$cc" -std=c99 send_and_receive.c
fi
