#!/usr/bin/env bash
# replay is never faster than asked for. How much slower it is depends on the machine.
#
#   replay.sh MESH-L2VPN LIBZARNIMESH WRITE_CAPTURE
tool=$1
write_capture=$3
. "$(dirname "$0")/expect.sh"
use_middleware "$2"
cd "$work"

"$tool" listen 3 >heard 2>listener &
listener=$!
until_said "node 3 listens" listener

# until_heard COUNT
until_heard() {
  for _ in $(seq 200); do
    [ "$(wc -l <heard)" -lt "$1" ] || return 0
    sleep 0.05
  done
  fail "$(wc -l <heard) tables were heard, not $1"
}

# Hundredths of a second, from a monotonic clock.
now() {
  local uptime
  read -r uptime _ </proc/uptime
  echo "${uptime/./}"
}

# expect_pace HUNDREDTHS OPTION...: a replay takes at least as long, minus the resolution of the clock.
expect_pace() {
  local least=$1 start taken
  shift
  start=$(now)
  expect_exit 0 "$tool" replay --to 3 "$@"
  taken=$(($(now) - start))
  [ "$taken" -ge $((least - 1)) ] || fail "replay $* took $taken hundredths of a second"
  echo "replay $*: $taken hundredths of a second, at least $least"
}

"$write_capture" paced.pcapng 101  # one a millisecond
expect_pace 10 paced.pcapng
expect_pace 40 --speed 0.25 paced.pcapng
expect_pace 5 --speed 2 paced.pcapng
expect_pace 50 --rate 200 paced.pcapng
"$write_capture" few.pcapng 4
expect_pace 150 --rate 2 few.pcapng

# Two recordings, years apart: only the recorded pace waits for them.
"$tool" record 4 later.pcapng --count 1 2>recorder &
recorder=$!
until_said "node 4 records" recorder
echo '{"f0": 1}' | "$tool" --quiet send --to 4 -m l2vpn_sync_stp
wait $recorder
cat few.pcapng later.pcapng >years.pcapng
expect_exit 0 "$tool" replay --to 3 --at-once years.pcapng
expect_text err "5 tables sent"
expect_exit 0 "$tool" replay --to 3 --rate 1000 years.pcapng
expect_text err "5 tables sent"
"$tool" replay --to 3 years.pcapng 2>waiting &
waiting=$!
heard=$((4 * 101 + 4 + 2 * 5 + 4))
until_heard $heard
sleep 0.2
kill -TERM $waiting
wait $waiting || fail "an interrupted replay fails"
expect_text waiting "4 tables sent"

# An interruption ends the wait for the rest of a capture.
mkfifo fifo
exec 8<>fifo  # keeps a writer open
cat few.pcapng >&8
"$tool" replay --to 3 --at-once - <&8 2>waiting &
waiting=$!
heard=$((heard + 4))
until_heard $heard
kill -HUP $waiting
wait $waiting || fail "a replay that is interrupted while it waits fails"
expect_text waiting "4 tables sent"
exec 8>&-

# No receiver.
expect_exit 3 "$tool" replay --to 77 --at-once few.pcapng
expect_text err "table 1, dbginfo_key_l2vpn: sending to node 77"
expect_text err "; 0 tables were sent before"

for pace in "--rate nan" "--rate inf" "--speed nan" "--speed inf" "--rate 0" "--rate -1" "--speed 0" "--rate 5 --speed 2" "--at-once --rate 5" \
            "--at-once --speed 2"; do
  # shellcheck disable=SC2086
  expect_exit 2 "$tool" replay $pace few.pcapng
done

kill -TERM $listener
wait $listener || fail "the listener fails"
[ "$(wc -l <heard)" -eq $heard ] || fail "more was heard than was sent"
