#!/usr/bin/env bash
# The C++ header costs nothing: calls through it compile to the instructions of the C calls. Compilers
# put independent instructions in different orders, so they are compared sorted.
#
#   compare.sh CXX [FLAG...]      FLAG: where the headers are
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for language in c cpp; do
  "$@" -std=c++17 -O2 -fno-exceptions -fno-rtti -c "${language}_calls.cpp" -o "$work/$language.o"
  objdump -drC --no-show-raw-insn --no-addresses "$work/$language.o" |
    awk '/^Dis/ { wanted = 0 } /^</ { wanted = /^<(pack|send|unpack)[A-Za-z]+\(/ } wanted && NF' |
    sort >"$work/$language.s"
  calls=$(grep -cE 'R_.*(l2vpn_sync_vll_pw__|dbginfo_key_l2vpn_)' "$work/$language.s" || true)
  [ "$calls" = 6 ] || { echo "FAILED: ${language}_calls.cpp has $calls calls, not 6"; exit 1; }
done
diff "$work/c.s" "$work/cpp.s"
