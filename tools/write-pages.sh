#!/usr/bin/env bash
# Generates docs/messages.md and the function headers from the schemas.
#
#   tools/write-pages.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build
cmake -S . -B build/pages -G Ninja -DBUILD_TESTING=OFF -DMESH_L2VPN_WORKSTATION=OFF \
  -DMESH_L2VPN_EXAMPLES=OFF >/dev/null
cmake --build build/pages --target mesh-l2vpn-catalogue
catalogue=build/pages/tools/catalogue/mesh-l2vpn-catalogue

written=$(mktemp)
trap 'rm -f "$written"' EXIT
write() {
  "$catalogue" "${@:2}" >"$written"
  cmp -s "$written" "$1" || { cat "$written" >"$1"; echo "written: $1"; }
}
write docs/messages.md
for service in l2vpn_cfg l2vpn_stat l2vpn_sync; do
  write "$service/include/mesh_l2vpn/${service}_functions.h" functions "$service"
done
