#!/usr/bin/env bash
# Makes the Debian packages, checks them with lintian, and runs the Python package from what they
# unpack to.
#
#   tools/make-packages.sh            builds everything in build/packages
#   tools/make-packages.sh BUILD      of an optimised build with g++ that is there, in its directory
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build libzmq3-dev libcli11-dev nlohmann-json3-dev dpkg-dev file lintian \
  systemtap-sdt-dev

build=${1:-build/packages}
options=()
[ $# -gt 0 ] || options=(-G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DMESH_L2VPN_EXAMPLES=OFF)
cmake -S . -B "$build" "${options[@]}" -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build "$build"
rm -f "$build"/*.deb
(cd "$build" && cpack >/dev/null)
as_anyone=()
[ "$(id -u)" -ne 0 ] || as_anyone=(--allow-root)
lintian "${as_anyone[@]}" --fail-on error "$build"/*.deb

unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
for package in libmesh-l2vpn-inspect1 mesh-l2vpn-workstation python3-mesh-l2vpn; do
  dpkg -x "$build/$package"_*.deb "$unpacked"
done
libraries=("$unpacked"/usr/lib/*/libmesh_l2vpn_inspect.so.1)
LD_LIBRARY_PATH=$(dirname "${libraries[0]}") PYTHONPATH=$unpacked/usr/lib/python3/dist-packages \
  /usr/bin/python3 -B - "$unpacked" <<'END'
import sys
import mesh_l2vpn as m

stp = m.l2vpn_sync_stp(7)
assert m.verify(stp.pack(), m.l2vpn_sync_stp)
with m.Node(1, runtime_directory=sys.argv[1] + "/nodes") as node:
    node.send(1, stp)
    assert node.receive_one(timeout=10).record == stp
END
ls -l "$build"/*.deb
