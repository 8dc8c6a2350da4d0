#!/usr/bin/env bash
# Builds the Debian packages in build/packages and checks them with lintian.
#
#   tools/make-packages.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build libzmq3-dev libcli11-dev nlohmann-json3-dev dpkg-dev file lintian \
  systemtap-sdt-dev

build=build/packages
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF \
  -DMESH_L2VPN_EXAMPLES=OFF -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build "$build"
rm -f "$build"/*.deb
(cd "$build" && cpack >/dev/null)
as_anyone=()
[ "$(id -u)" -ne 0 ] || as_anyone=(--allow-root)
lintian "${as_anyone[@]}" --fail-on error "$build"/*.deb
ls -l "$build"/*.deb
