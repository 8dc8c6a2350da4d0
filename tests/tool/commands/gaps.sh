#!/usr/bin/env bash
# Calls that never reach a recorder: the capture shows where, even if the recorder is killed.
#
#   gaps.sh MESH-L2VPN LIBZARNIMESH SEND_WITH_GAPS
tool=$1
send_with_gaps=$3
. "$(dirname "$0")/expect.sh"
use_middleware "$2"
cd "$work"

id=$("$tool" show l2vpn_sync_stp | sed -n 's/ *identifier *//p')
echo '{"f0": 1}' | "$tool" encode -m l2vpn_sync_stp >table.bin

# record_with_gaps FILE SIGNAL: seven tables of two nodes; SIGNAL ends the recorder.
record_with_gaps() {
  "$tool" record 7 "$1" 2>"$1.said" &
  recorder=$!
  until_said "node 7 records" "$1.said"
  "$send_with_gaps" "ipc://$ZARNIMESH_RUNTIME_DIR/7" 98 7 "$id" table.bin 1 2 5 6
  "$send_with_gaps" "ipc://$ZARNIMESH_RUNTIME_DIR/7" 99 7 "$id" table.bin 4 5 7
  for _ in $(seq 200); do
    [ "$("$tool" --quiet decode "$1" | wc -l)" -lt 7 ] || break
    sleep 0.05
  done
  kill "-$2" $recorder
  wait $recorder 2>/dev/null || [ "$2" = KILL ] || fail "the recorder fails"
}

for signal in KILL TERM; do
  record_with_gaps $signal.pcapng $signal
  expect_exit 0 "$tool" decode $signal.pcapng
  [ "$(grep -o '"missedBefore":[0-9]*' out | tr '\n' ' ')" = \
    '"missedBefore":2 "missedBefore":3 "missedBefore":1 ' ] || fail "gaps of others: $(cat out)"
  [ "$(sed -n '/"missedBefore"/=' out | tr '\n' ' ')" = '3 5 7 ' ] || fail "gaps elsewhere: $(cat out)"
  expect_exit 0 "$tool" stat $signal.pcapng
  expect_text out "missed calls: 6, in 3 gaps"
  expect_text out "  from node 98: 2, in 1 gap"
  expect_text out "  from node 99: 4, in 2 gaps"
  expect_exit 0 "$tool" stat --json $signal.pcapng
  expect_text out '"missedCalls": 6'
  expect_text out '"gaps": 3'
done
