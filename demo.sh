#!/usr/bin/env bash
# Builds the library and lets one process announce attachment circuits to another.
#
#   ./demo.sh [RECORDS]    RECORDS: how many records to stream at the end, 1000000 by default
#
# Exit code 0: every record arrived, equal and in order.
set -euo pipefail
cd "$(dirname "$0")"

records=${1-1000000}
if [ $# -gt 1 ] || ! [[ $records =~ ^[1-9][0-9]{0,9}$ ]]; then
  echo "demo.sh: RECORDS is one number from 1 to 9999999999, not '$*'" >&2
  exit 2
fi

tools/setup.sh g++ cmake ninja-build libzmq3-dev

build=build/demo
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF \
  -DMESH_L2VPN_TOOLS=OFF >/dev/null
cmake --build "$build"

# A directory of our own for the sockets: several demonstrations may run at once.
sockets=$(mktemp -d)
export ZARNIMESH_RUNTIME_DIR=$sockets
watcher=
cleanup() {
  [ -z "$watcher" ] || kill "$watcher" 2>/dev/null || true
  rm -rf "$sockets"
}
trap cleanup EXIT

"$build/examples/watch" "$records" &
watcher=$!
announced=0
"$build/examples/announce" "$records" || announced=$?
watched=0
wait "$watcher" || watched=$?
watcher=

if [ "$announced" -ne 0 ] || [ "$watched" -ne 0 ]; then
  echo "The demonstration failed: announce ended with $announced, watch with $watched." >&2
  exit 1
fi
echo "Done: all $records records made the way through libmesh_l2vpn.so and two processes."
