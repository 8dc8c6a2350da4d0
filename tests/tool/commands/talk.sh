#!/usr/bin/env bash
# send, listen, record, replay and stat, between processes.
#
#   talk.sh MESH-L2VPN LIBZARNIMESH
tool=$1
. "$(dirname "$0")/expect.sh"
use_middleware "$2"
cd "$work"

"$tool" listen 2 --base64 --count 3 --seconds 30 >heard 2>listener &
listener=$!
until_said "node 2 listens" listener
echo '{"f0": 18446744073709551615}' | "$tool" send --to 2 --from 5 --extra 9 -m l2vpn_sync_vpls_macping
echo '{"f3": "616263"}' | "$tool" send --to 2 --from 5 -m dbginfo_key_l2vpn
echo '{"f3": "YWJj"}' | "$tool" send --base64 --to 2 --from 5 -m dbginfo_key_l2vpn
wait $listener || fail "listen did not end well"
expect_text heard '"source":5,"destination":2,"message":"l2vpn_sync_vpls_macping"'
expect_text heard '"extra":9,'
expect_text heard '"record":{"f0":18446744073709551615,'
[ "$(grep -cF '"record":{"f0":0,"f1":0,"f2":0,"f3":"YWJj"}' heard)" -eq 2 ] || fail "other bytes: $(cat heard)"

"$tool" record 3 night.pcapng --count 5 --seconds 30 2>recorder &
recorder=$!
until_said "node 3 records" recorder
for value in 1 2 3 4 5; do
  echo "{\"f0\": $value}" | "$tool" --quiet send --to 3 --from 6 -m l2vpn_sync_stp
done
wait $recorder || fail "record did not end well"
expect_exit 0 "$tool" decode night.pcapng
[ "$(grep -c '"message":"l2vpn_sync_stp"' out)" -eq 5 ] || fail "five were not recorded"
expect_exit 0 "$tool" stat night.pcapng
expect_text out "l2vpn_sync_stp  5       200    40"
expect_exit 0 "$tool" stat --json night.pcapng
expect_text out '"missedCalls": 0'

"$tool" listen 3 --count 5 --seconds 30 >heard 2>listener &
listener=$!
until_said "node 3 listens" listener
expect_exit 0 "$tool" replay --at-once night.pcapng
expect_text err "5 tables sent"
wait $listener || fail "listen did not end well"
[ "$(grep -o '"record":{"f0":[0-9]' heard | tr -dc '1-5')" = 12345 ] || fail "replayed in disorder"

# `extra` of an identifier that no message has.
"$tool" record 3 known.pcapng --count 1 --seconds 30 2>recorder &
recorder=$!
until_said "node 3 records" recorder
echo '{}' | "$tool" --quiet send --to 3 --extra 18446744073709551615 -m l2vpn_sync_stp
wait $recorder || fail "record did not end well"
printf '\1\2\3\4' | dd of=known.pcapng bs=1 seek=$(($(last_table known.pcapng) + 16)) conv=notrunc status=none
"$tool" listen 3 --count 1 --seconds 30 >heard 2>listener &
listener=$!
until_said "node 3 listens" listener
expect_exit 0 "$tool" replay known.pcapng
wait $listener || fail "listen did not end well"
expect_text heard '"identifier":"0x04030201","extra":18446744073709551615,'

head -c -10 night.pcapng | head -c 500 >cut.pcapng
expect_exit 1 "$tool" stat cut.pcapng
expect_text err "truncated inside a block"

# Recorded packets survive a killed recorder.
"$tool" record 4 killed.pcapng 2>killed &
recorder=$!
until_said "node 4 records" killed
echo '{"f0": 1}' | "$tool" --quiet send --to 4 -m l2vpn_sync_stp
for _ in $(seq 100); do
  [ "$(stat -c %s killed.pcapng)" -lt 150 ] || break
  sleep 0.05
done
kill -KILL $recorder
wait $recorder 2>/dev/null || true
expect_exit 0 "$tool" decode killed.pcapng
expect_text out '"record":{"f0":1,'

# An interrupted recorder succeeds.
"$tool" record 4 ended.pcapng 2>terminated &
recorder=$!
until_said "node 4 records" terminated
kill -TERM $recorder
wait $recorder || fail "an interrupted recorder fails"

for options in "2 --seconds -1" "2 --seconds nan" "2 --seconds 0" 010 "2 --count 010"; do
  # shellcheck disable=SC2086
  expect_exit 2 timeout 20 "$tool" listen $options
done

# An existing capture survives a recorder that cannot start.
cp night.pcapng old.pcapng
expect_exit 3 "$tool" record --middleware ./no.so 2 old.pcapng
cmp night.pcapng old.pcapng || fail "a capture was destroyed"

# An existing capture is kept unless told otherwise. JSON lines are sent as they were received.
"$tool" decode night.pcapng >night.lines
expect_exit 3 "$tool" record 4 night.pcapng --count 1
expect_text err "night.pcapng: File exists"
"$tool" decode night.pcapng | cmp - night.lines || fail "a capture was destroyed"
"$tool" record 4 old.pcapng --overwrite --count 5 --seconds 30 2>overwriter &
recorder=$!
until_said "node 4 records" overwriter
expect_exit 0 "$tool" send --to 4 --from 6 night.lines
expect_text err "5 tables sent"
wait $recorder || fail "record --overwrite did not end well"
members='s/.*"source":\([0-9]*\).*"identifier"/\1/'
diff <("$tool" decode old.pcapng | sed "$members") <(sed "$members" night.lines) || fail "other tables were sent"
printf '\n%s\n' '{"message": 5}' >bad.lines
expect_exit 1 "$tool" send --to 4 bad.lines
expect_text err "bad.lines: line 2: message: expected a name; 0 tables sent"
expect_exit 2 "$tool" send -m l2vpn_sync_stp night.lines

# A recorder whose terminal closes succeeds.
"$tool" record 4 ended.pcapng --overwrite 2>hung_up &
recorder=$!
until_said "node 4 records" hung_up
kill -HUP $recorder
wait $recorder || fail "a recorder whose terminal closed fails"
expect_text hung_up "0 tables recorded"

# listen reports a failing output.
"$tool" listen 2 >/dev/full 2>listener &
listener=$!
until_said "node 2 listens" listener
echo '{"f0": 1}' | "$tool" --quiet send --to 2 -m l2vpn_sync_stp
code=0
wait $listener || code=$?
[ $code -eq 3 ] || fail "listen ends with $code where the output is full"
expect_text listener "the output: No space left on device"

echo '{}' >empty.json
expect_exit 3 "$tool" send --middleware ./no.so --to 2 -m l2vpn_sync_stp empty.json
expect_text err "cannot load the middleware"
