#!/usr/bin/env bash
# diff of messages that are faulty, long, or equal.
#
#   differences.sh MESH-L2VPN
tool=$1
. "$(dirname "$0")/expect.sh"
cd "$work"

message=l2vpn_sync_vpls_ac_update
echo '{"f0": 7}' | "$tool" encode -m $message --compact >sound.bin
head -c -1 sound.bin >cut.bin
expect_exit 1 "$tool" decode -m $message cut.bin
expect_exit 0 "$tool" diff -m $message cut.bin cut.bin
expect_exit 1 "$tool" diff -m $message sound.bin cut.bin
head -c 10 sound.bin >stump.bin
expect_exit 1 "$tool" diff -m $message stump.bin stump.bin
expect_text err "receivers reject this $message"

expect_exit 2 "$tool" diff -m $message - - <sound.bin
expect_text err "the standard input cannot be both messages"
expect_exit 0 "$tool" diff -m $message sound.bin - <sound.bin

list=l2vpn_cfg_query_dfx_rec
for digit in 1 2; do
  long=$(printf "$digit%.0s" $(seq 32768))
  echo "{\"f1\": [{\"f4\": \"$long\"}]}" | "$tool" encode -m $list >$digit.bin
done
expect_exit 1 "$tool" diff -m $list 1.bin 2.bin
expect_text out 'f1[0].f4  "11*16384"  "22*16384"'
expect_exit 1 "$tool" diff --all -m $list 1.bin 2.bin
expect_text out '... (32770 characters)'
[ "$(wc -L <out)" -le 200 ] || fail "a line of $(wc -L <out) characters"
expect_exit 1 "$tool" diff --json --all -m $list 1.bin 2.bin
expect_text out "$long"

# Equal items that differ alike share a line.
echo '{"f1": [{"f1": 7, "times": 30}, {"f1": 8}]}' | "$tool" encode -m $list >1.bin
echo '{"f1": [{"f1": 7, "times": 9}, {"f1": 9, "times": 11}, {"f1": 7, "times": 11}]}' |
  "$tool" encode -m $list >2.bin
expect_exit 1 "$tool" diff -m $list 1.bin 2.bin
expect_text out "f1[9..19].f1  7      9"
expect_text out "f1[30].f1     8      7"
expect_exit 1 "$tool" diff --all -m $list 1.bin 2.bin
expect_text out "f1[19].f1  7      9"
