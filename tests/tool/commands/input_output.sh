#!/usr/bin/env bash
# Input and output: pipes, dumps, directories, misplaced captures, failing outputs.
#
#   input_output.sh MESH-L2VPN WRITE_CAPTURE
tool=$1
write_capture=$2
. "$(dirname "$0")/expect.sh"
cd "$work"

message=l2vpn_sync_vpls_ac_update
echo '{"f0": 7, "f1": {"f0": 42, "f6": 1042, "f8": "616263000000000000000000"}}' >update.json
"$tool" encode -m $message update.json >update.bin
"$tool" decode --line -m $message update.bin >decoded
"$write_capture" big.pcapng 2000
"$write_capture" small.pcapng 3

# A pipe is read once.
expect_exit 0 "$tool" decode --line -m $message <(cat update.bin)
cmp out decoded || fail "another record from a pipe by path"
expect_exit 0 "$tool" decode --line -m $message /dev/stdin < <(cat update.bin)
cmp out decoded || fail "another record from a pipe"
expect_exit 0 "$tool" decode - <small.pcapng
[ "$(wc -l <out)" -eq 3 ] || fail "a capture on the standard input is not recognised"
expect_exit 0 "$tool" decode <(cat small.pcapng)
[ "$(wc -l <out)" -eq 3 ] || fail "a capture in a pipe is not recognised"

# Dumps of other programs are read, or rejected with the line.
expect_dump() {
  expect_exit 0 "$tool" decode --line -m $message "$1"
  cmp out decoded || fail "another record from a dump: $(cat "$1")"
}
expect_no_dump() {
  expect_exit 1 "$tool" decode --line -m $message "$1"
  expect_text err "looks like text, but line 1 is not hexadecimal text"
  expect_text err "use --binary for bytes"
}
if command -v xxd >/dev/null; then
  for options in "" -a -p -g1 -c10 "-a -c8"; do
    # shellcheck disable=SC2086
    xxd $options update.bin >dump
    expect_dump dump
  done
  xxd update.bin | sed 's/^/  /' >dump
  expect_dump dump
  head -c 5000 /dev/zero | xxd -a >dump
  expect_exit 1 "$tool" decode --line -m $message dump
  expect_text err "not in 4 to 4996"
  for options in -e -b "-i update.bin"; do
    # shellcheck disable=SC2086
    xxd $options <update.bin >dump 2>&1 || xxd $options >dump
    expect_no_dump dump
  done
else
  echo "not tried, xxd is missing (Debian: xxd)"
fi
od -Ax -tx1 update.bin >dump
expect_dump dump
od -Ax -tx1z update.bin >dump
expect_dump dump
od -An -tx1 update.bin >dump
expect_dump dump
od -v -Ax -tx1 update.bin | sed '$d; s/^00//; s/ /   /' >dump  # as Wireshark writes it
expect_dump dump
for options in "" -tx1 "-Ad -tx1" -x; do
  # shellcheck disable=SC2086
  od $options update.bin >dump
  expect_exit 1 "$tool" decode --line -m $message dump
  expect_text err "not hexadecimal text"
done
if command -v hexdump >/dev/null; then
  hexdump -C update.bin >dump
  expect_dump dump
  hexdump update.bin >dump
  expect_no_dump dump
else
  echo "not tried, hexdump is missing (Debian: bsdextrautils)"
fi
printf '#\0\0\0 is no comment' >hash.bin
expect_exit 1 "$tool" decode -m $message hash.bin
expect_text err "a table at 35"
echo "no message at all" >words
expect_exit 1 "$tool" decode -m $message --hex words
expect_text err "words: line 1 is not hexadecimal text"

# Directories, and captures in place of messages.
for command in "stat" "decode --capture" "decode" "replay" "explain" "encode -m $message"; do
  # shellcheck disable=SC2086
  expect_exit 3 "$tool" $command "$work"
  expect_text err "$work: Is a directory"
done
expect_exit 1 "$tool" explain small.pcapng
expect_text err "small.pcapng: this is a capture; use decode"
expect_exit 1 "$tool" diff small.pcapng update.bin
expect_text err "this is a capture"
expect_exit 2 "$tool" decode --binary --capture small.pcapng

# JSON that must not crash the program.
echo '{"f0": 1e400}' >number.json
expect_exit 1 "$tool" encode -m $message number.json
expect_text err "number overflow"
head -c 200000 /dev/zero | tr '\0' '[' >nested.json
expect_exit 1 "$tool" encode -m $message nested.json
expect_text err "more than 64 levels of nesting"
echo '{"f\u001b[31m0": 1}' >escape.json
expect_exit 1 "$tool" encode -m $message escape.json
expect_text err 'f\x1b[31m0: '
# Nothing behind a zero byte is lost: the parser would end there.
printf '{"f0": 7}\0{"f0": 8}' >two.json
printf '0\0\0\0' >bytes.json
for file in two.json bytes.json; do
  expect_exit 1 "$tool" encode -m $message $file
  expect_text err "is zero"
  [ ! -s out ] || fail "$file is encoded"
done

# Failing outputs are reported.
for command in list "decode -m $message update.bin" "decode big.pcapng" "encode -m $message update.json" \
               "explain -m $message update.bin" "stat big.pcapng" "completion bash" --help --version; do
  code=0
  # shellcheck disable=SC2086
  "$tool" $command >/dev/full 2>err || code=$?
  [ $code -eq 3 ] || fail "$command ends with $code where the output is full"
  expect_text err "mesh-l2vpn: the output: No space left on device"
  code=0
  # shellcheck disable=SC2086
  "$tool" $command >&- 2>err || code=$?
  [ $code -eq 3 ] || fail "$command ends with $code where the output is closed"
  expect_text err "mesh-l2vpn: the output: Bad file descriptor"
done

# A reader that takes one line and exits ends the program early: the output exceeds a pipe.
[ "$("$tool" decode big.pcapng | wc -c)" -gt 1000000 ] || fail "the output would fit a pipe"
set +o pipefail
"$tool" decode big.pcapng 2>err | head -1 >line
codes=("${PIPESTATUS[@]}")
set -o pipefail
[ "$(wc -l <line)" -eq 1 ] || fail "not one line"
[ ! -s err ] || fail "an early end of the pipe is reported: $(cat err)"
[ "${codes[0]}" -eq 141 ] || fail "decode ends with ${codes[0]} when its pipe does"  # SIGPIPE
