#!/usr/bin/env bash
# Updates the baselines in abi/: the binary interfaces of the shared objects, and the wire format of
# every message. Commit them together with the CHANGELOG entry that announces the change
# (docs/versions.md).
#
#   tools/announce-interface.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build abigail-tools nlohmann-json3-dev
build=build/interface
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMESH_L2VPN_DEVELOPER=ON \
  -DCMAKE_CXX_COMPILER=g++ -DBUILD_TESTING=OFF -DMESH_L2VPN_WORKSTATION=OFF \
  -DMESH_L2VPN_EXAMPLES=OFF >/dev/null
cmake --build "$build" --target mesh_l2vpn mesh_l2vpn_inspect mesh-l2vpn-catalogue

# Without source paths, which differ between machines.
describe() {
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --exported-interfaces-only \
    --drop-undefined-syms --type-id-style hash "$@" | sed "s,path='$PWD/,path=',"
}
describe "$build/libmesh_l2vpn.so" >abi/libmesh_l2vpn.xml
# What an opaque type is made of is nobody's business.
describe --headers-dir inspect/include --drop-private-types "$build/libmesh_l2vpn_inspect.so" \
  >abi/libmesh_l2vpn_inspect.xml
"$build/tools/catalogue/mesh-l2vpn-catalogue" fingerprints >abi/fingerprints.txt
git --no-pager diff --stat -- abi
