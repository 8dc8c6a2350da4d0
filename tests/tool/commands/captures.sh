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
patch newer.pcapng 112 '\2'
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

# Damage costs a block.
cp night.pcapng damaged.pcapng
patch damaged.pcapng 84 '\377'
expect_exit 1 "$tool" decode damaged.pcapng
[ "$(wc -l <out)" -eq 5 ] || fail "damage costs more than a table"
expect_text err "; reading continues at byte "
