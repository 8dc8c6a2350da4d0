#!/usr/bin/env bash
# What the command line accepts, and what it says of the rest.
#
#   command_line.sh MESH-L2VPN
tool=$1
. "$(dirname "$0")/expect.sh"
cd "$work"

# expect_refused TEXT COMMAND...: one line on the standard error has the text. The command must not
# wait for messages.
expect_refused() {
  local text=$1
  shift
  expect_exit 2 timeout 20 "$tool" "$@"
  expect_text err "$text"
}

# Numbers neither wrap nor saturate, and '' is none.
numbers() {
  "$@" -1
  "$@" ''
  "$@" 18446744073709551616
  "$@" 99999999999999999999
  "$@" 1x
  "$@" 010
}
extra() { expect_refused "--extra: '$1' " send --to 2 -m l2vpn_sync_stp --extra "$1"; }
count() { expect_refused "--count: '$1' " listen 2 --count "$1"; }
to() { expect_refused "--to: '$1' " send --to "$1" -m l2vpn_sync_stp; }
from() { expect_refused "--from: '$1' " replay --from "$1" night.pcapng; }
numbers extra
numbers count
numbers to
numbers from
count 0
to 4294967296
for address in '' 4294967296 10x; do
  expect_refused "ADDRESS: '$address' " listen "$address"
done

# A command that does not exist is named with its neighbours; options stand as they were written.
expect_refused "mesh-l2vpn: unknown command 'decod'; did you mean decode, record; see mesh-l2vpn --help" decod x
expect_refused "mesh-l2vpn: unknown command 'nothing'; see mesh-l2vpn --help" --quiet nothing
expect_refused "mesh-l2vpn: a command is required; see mesh-l2vpn --help"
expect_refused "mesh-l2vpn: not expected: --colr; see" --colr
expect_refused "mesh-l2vpn: decode: not expected: --foo --bar; see mesh-l2vpn decode --help" decode --foo --bar x
expect_refused "mesh-l2vpn: decode: --hex --binary: these exclude each other; see" decode --hex --binary x
expect_refused "mesh-l2vpn: decode: --binary --hex: these exclude each other; see" decode --binary --hex x
expect_refused "mesh-l2vpn: --color needs a value; see mesh-l2vpn --help" --color
expect_refused "mesh-l2vpn: diff: SECOND is required; see mesh-l2vpn diff --help" diff first.bin
[ "$(wc -l <err)" -eq 1 ] || fail "an error of the command line has $(wc -l <err) lines"

expect_exit 0 "$tool" --help
cp out general
expect_exit 0 "$tool" help
cmp out general || fail "help is not --help"
expect_exit 0 "$tool" decode --help
cp out decode
expect_exit 0 "$tool" help decode
cmp out decode || fail "help decode is not decode --help"
expect_refused "unknown command 'decod'; did you mean decode" help decod
