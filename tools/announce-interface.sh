#!/usr/bin/env bash
# Updates the baselines in abi/: the binary interface of the shared object, and the wire format of
# every message. Commit them together with the CHANGELOG entry that announces the change
# (docs/versions.md).
#
#   tools/announce-interface.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build abigail-tools
build=build/interface
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMESH_L2VPN_DEVELOPER=ON \
  -DCMAKE_CXX_COMPILER=g++ -DBUILD_TESTING=OFF -DMESH_L2VPN_WORKSTATION=OFF \
  -DMESH_L2VPN_EXAMPLES=OFF >/dev/null
cmake --build "$build" --target mesh_l2vpn mesh-l2vpn-catalogue

# Without source paths, which differ between machines.
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --exported-interfaces-only \
  --drop-undefined-syms --type-id-style hash "$build/libmesh_l2vpn.so" |
  sed "s,path='$PWD/,path='," >abi/libmesh_l2vpn.xml
"$build/tools/catalogue/mesh-l2vpn-catalogue" fingerprints >abi/fingerprints.txt
git --no-pager diff --stat -- abi
