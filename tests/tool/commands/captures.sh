#!/usr/bin/env bash
# Captures that are none of ours, damaged, selected from, compared and edited.
#
#   captures.sh MESH-L2VPN WRITE_CAPTURE
tool=$1
write_capture=$2
. "$(dirname "$0")/expect.sh"
cd "$work"

# patch FILE POSITION BYTES: overwrites bytes of a file, as printf writes them.
patch() {
  # shellcheck disable=SC2059
  printf "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}

"$write_capture" night.pcapng 6

# Files of other programs and versions: each is named, with what to do.
gzip -k night.pcapng
printf '\324\303\262\241\2\0\4\0' >classic.pcap
"$write_capture" ethernet.pcapng 1
patch ethernet.pcapng 56 '\1'
"$write_capture" newer.pcapng 1
patch newer.pcapng $(($(last_table newer.pcapng) + 4)) '\2'
expect_foreign() {
  for command in decode "decode --capture" stat "replay --middleware ./no.so" "compat all.json all.json"; do
    # shellcheck disable=SC2086
    "$tool" $command "$1" >out 2>err && fail "$command takes $1"
    case $command in replay*) ;; *) expect_text err "mesh-l2vpn: $1: $2" ;; esac
  done
}
"$tool" schema >all.json
expect_foreign night.pcapng.gz "byte 0: this is a gzip file; unpack it with gunzip"
expect_foreign classic.pcap "byte 0: this is a pcap file of the classic format; convert it with editcap -F pcapng"
expect_foreign ethernet.pcapng "no tables, other packets: 1; the last is of link type 1, tables are of 147"
expect_foreign newer.pcapng "no tables, other packets: 1; the last is of version 2, this program reads version 1"
expect_exit 1 "$tool" explain night.pcapng.gz
expect_text err "night.pcapng.gz: this is a gzip file; unpack it with gunzip"

# Damage costs a block: a table, or the schema before the first.
for damage in "5 $(($(last_table night.pcapng) - 24))" "6 84"; do
  cp night.pcapng damaged.pcapng
  patch damaged.pcapng "${damage#* }" '\377'
  expect_exit 1 "$tool" decode damaged.pcapng
  [ "$(wc -l <out)" -eq "${damage% *}" ] || fail "damage of byte ${damage#* } leaves $(wc -l <out) tables"
  expect_text err "; reading continues at byte "
done

# decode passes on each table of a growing capture at once; stat summarises it when interrupted.
mkfifo fifo
"$tool" decode --capture fifo >streamed &
decoding=$!
exec 8>fifo
head -c -52 night.pcapng >&8
until_said '"identifier"' streamed
for _ in $(seq 200); do
  [ "$(wc -l <streamed)" -lt 6 ] || break
  sleep 0.05
done
[ "$(wc -l <streamed)" -eq 6 ] || fail "$(wc -l <streamed) tables of a growing capture are decoded, not 6"
exec 8>&-
wait $decoding || fail "decode of a pipe fails"
"$tool" stat fifo >summary 2>err &
counting=$!
exec 8>fifo
head -c -52 night.pcapng >&8
sleep 0.5
kill -INT $counting
wait $counting || fail "an interrupted stat fails"
expect_text summary "other packets: 0"
exec 8>&-

# An interrupted open is a failure.
mkfifo closed
code=0
timeout --preserve-status -s TERM 1 "$tool" stat closed >out 2>err || code=$?
[ $code -eq 3 ] || fail "an interrupted open ends with $code"
expect_text err "closed: Interrupted system call"

# lines FILTER...: how many tables a selection takes.
lines() { "$tool" --quiet decode select.pcapng "$@" | wc -l; }
"$write_capture" select.pcapng 300 sound l2vpn_sync_stp l2vpn_sync_vpls_ac_update l2vpn_cfg_query_dfx_rec
[ "$(lines)" -eq 300 ] || fail "no selection takes $(lines) tables, not 300"
[ "$(lines -m l2vpn_sync_stp)" -eq 100 ] || fail "-m takes $(lines -m l2vpn_sync_stp)"
[ "$(lines --packet 7)" -eq 1 ] || fail "--packet takes $(lines --packet 7)"
[ "$(lines --packet 301)" -eq 0 ] || fail "--packet takes what is not there"
[ "$(lines --source 1 --destination 2)" -eq 300 ] || fail "addresses of all tables take fewer"
[ "$(lines --source 2)" -eq 0 ] || fail "--source takes another source"
[ "$(lines --since 2023-11-14T22:13:20.1Z --until 2023-11-14T22:13:20.109Z)" -eq 10 ] || fail "other times are taken"
[ "$(lines --where 'extra >= 290')" -eq 10 ] || fail "--where of a number"
[ "$("$tool" --quiet decode --where 'extra >= 290' select.pcapng | wc -l)" -eq 10 ] || fail "--where takes the file"
[ "$(lines --where 'extra >= 0x122' --where 'message == l2vpn_sync_stp')" -eq 3 ] || fail "--where twice"
"$tool" decode select.pcapng >all.lines
for field in f0 f1.f6; do
  value=$(sed -n "s/.*l2vpn_sync_vpls_ac_update.*\"record\":{\"f0\":\([0-9]*\),\"f1\":{.*\"f6\":\([0-9]*\),.*/\1 \2/p" all.lines |
    sed -n 5p | cut -d' ' -f$([ $field = f0 ] && echo 1 || echo 2))
  expected=$(sed -n 's/.*l2vpn_sync_vpls_ac_update.*"record":{"f0":\([0-9]*\),"f1":{.*"f6":\([0-9]*\),.*/\1 \2/p' all.lines |
    cut -d' ' -f$([ $field = f0 ] && echo 1 || echo 2) | grep -cx "$value")
  found=$(lines -m l2vpn_sync_vpls_ac_update --where "$field == $value")
  [ "$found" -eq "$expected" ] && [ "$found" -gt 0 ] || fail "$field == $value takes $found tables, not $expected"
done
[ "$(lines --where 'f1[].f0 != nothing')" -eq "$(grep -c '"f1":\[{' all.lines)" ] || fail "--where of any item"
expect_exit 2 "$tool" decode select.pcapng --where 'f99 == 1'
expect_text err "no message has what --where compares: 'f99'"
expect_exit 2 "$tool" decode select.pcapng -m l2vpn_sync_stp --where 'f1.f6 == 1'
expect_text err "l2vpn_sync_stp never has what --where compares: 'f1.f6'"
for condition in 'f0' 'f0 = 1' '== 1' 'f0 =='; do
  expect_exit 2 "$tool" decode select.pcapng --where "$condition"
done
expect_exit 2 "$tool" stat select.pcapng --since yesterday
expect_text err "--since: 'yesterday' is no time"
expect_exit 0 "$tool" stat select.pcapng -m l2vpn_sync_stp --where 'extra < 30'
expect_text out "l2vpn_sync_stp  10 "

# A packet is a message for every command.
"$tool" encode --packet 2 select.pcapng >two.bin
expect_exit 0 "$tool" explain --packet 2 select.pcapng
cp out explained
expect_exit 0 "$tool" explain -m "$(sed -n 's/.*"message":"\([a-z0-9_]*\)".*/\1/p' all.lines | sed -n 2p)" two.bin
cmp out explained || fail "another explanation of packet 2"
expect_exit 0 "$tool" diff --packet 2 select.pcapng two.bin
expect_exit 1 "$tool" diff --packet 2 select.pcapng night.pcapng
expect_exit 1 "$tool" explain --packet 301 select.pcapng
expect_text err "select.pcapng: packet 301 is not there; the last is 300"
expect_exit 2 "$tool" explain --packet 2 two.bin
expect_text err "two.bin is no capture"

# Captures of JSON lines are the captures that were decoded.
"$write_capture" edit.pcapng 300 sound l2vpn_sync_stp l2vpn_sync_vpls_ac_update
"$tool" decode edit.pcapng >all.lines
expect_exit 0 "$tool" --quiet encode --capture all.lines
cp out again.pcapng
"$tool" decode again.pcapng | cmp - all.lines || fail "another capture of the same lines"
expect_exit 0 "$tool" diff edit.pcapng again.pcapng
expect_text err "300 pairs of tables, differences: 0"
"$tool" decode --big-as-text edit.pcapng >text.lines
expect_text text.lines '"extra":"0x000000000000012B"'
"$tool" --quiet encode --capture text.lines | "$tool" decode - | cmp - all.lines || fail "numbers as text are other numbers"
sed '5d; 9s/"extra":8/"extra":9/' all.lines | "$tool" --quiet encode --capture - >edited.pcapng
expect_exit 1 "$tool" diff edit.pcapng edited.pcapng
grep -q "^packet 5, l2vpn_sync_[a-z_]* from node 1 to node 2: only in the first$" out || fail "packet 5 is in both: $(cat out)"
expect_text out "extra  8      9"
expect_text err "299 pairs of tables, differences: 2"
expect_exit 1 "$tool" diff --json edit.pcapng edited.pcapng
expect_text out '"only": "first"'
[ "$(python3 -c 'import json; print(len(json.load(open("out"))))')" -eq 2 ] || fail "diff --json writes no array of two"
expect_exit 0 "$tool" diff --json edit.pcapng edit.pcapng
python3 -c 'import json; assert json.load(open("out")) == []' || fail "diff --json of equal captures is no empty array"
for line in '{}' '{"message": "l2vpn_sync_stp"}' '{"message": "l2vpn_sync_stp", "recrod": {}}' \
            '{"message": "l2vpn_sync_stp", "identifier": 1, "record": {}}' \
            '{"message": "l2vpn_sync_stp", "time": "now", "record": {}}' '[]' 'x'; do
  printf '%s\n' '{"message": "l2vpn_sync_stp", "record": {}}' "$line" >bad.lines
  expect_exit 1 "$tool" encode --capture bad.lines
  expect_text err "bad.lines: line 2: "
  cp out before.pcapng
  [ "$("$tool" decode before.pcapng | wc -l)" -eq 1 ] || fail "the line before is lost"
done

# A full disk leaves whole tables, and their number.
(
  trap '' XFSZ
  ulimit -f 4
  code=0
  "$tool" encode --capture all.lines >full.pcapng 2>err || code=$?
  [ $code -eq 3 ] || fail "a full disk ends with $code"
)
expect_text err "File too large"
expect_exit 0 "$tool" --quiet stat full.pcapng

# The progress of a long command: percent and time left.
if command -v script >/dev/null; then
  "$write_capture" long.pcapng 60000
  script -qec "$tool decode long.pcapng --where 'extra >= 0' >/dev/null" /dev/null >progress </dev/null || fail "decode on a terminal fails"
  grep -qE '[0-9]+ tables, [0-9]+ %, [0-9]+ s left' progress || fail "no progress: $(tail -c 200 progress)"
else
  echo "not tried, script is missing (Debian: bsdutils)"
fi
