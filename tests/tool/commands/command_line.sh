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
