#!/usr/bin/env bash
# Runs the demonstration's two processes over the real shared object and the real transport.
#
#   deliver.sh DIRECTORY-OF-THE-EXAMPLES RECORDS
set -euo pipefail
sockets=$(mktemp -d)
watcher=
cleanup() {
  [ -z "$watcher" ] || kill "$watcher" 2>/dev/null || true
  rm -rf "$sockets"
}
trap cleanup EXIT
export ZARNIMESH_RUNTIME_DIR=$sockets
"$1/watch" "$2" &
watcher=$!
"$1/announce" "$2"
wait "$watcher"
watcher=
