#!/usr/bin/env bash
# Runs both machines of two_machines.c on this machine.
#
#   two_machines.sh DIRECTORY-OF-THE-EXAMPLES
set -euo pipefail
work=$(mktemp -d)
receiver=
cleanup() {
  [ -z "$receiver" ] || kill "$receiver" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export ZARNIMESH_RUNTIME_DIR=$work/sockets

echo "2 tcp://127.0.0.1:$((20000 + $$ % 12000))" >"$work/book"
"$1/two_machines" receive "$work/book" 1000 >"$work/received" &
receiver=$!
for _ in $(seq 100); do
  [ ! -s "$work/received" ] || break
  sleep 0.1
done
"$1/two_machines" send "$work/book" 1000
wait "$receiver"
receiver=
cat "$work/received"
