#!/usr/bin/env bash
# The shared object has the probes that docs/observing.md lists, and a debugger stops at each with its
# arguments. Prints "skipped" where the system lets no debugger run a program.
#
#   probes.sh PROBED DOCUMENT
set -euo pipefail
probed=$1 document=$2
library=$(ldd "$probed" | awk '$1 ~ /^libmesh_l2vpn\.so/ { print $3 }')
documented=$(sed -n 's/^| `\([a-z_]*\)` | .*/\1/p' "$document" | sort -u)
[ -n "$documented" ]
found=$(readelf -n "$library" | awk '$1 == "Provider:" { ours = $2 == "mesh_l2vpn" }
  $1 == "Name:" && ours { print $2 }' | sort -u)
diff <(echo "$documented") <(echo "$found")

command -v gdb >/dev/null || { echo "skipped: gdb is missing"; exit 77; }
said=$(gdb -batch -nx -x "$(dirname "$0")/probes.gdb" "$probed" 2>&1) || true
if grep -qi 'ptrace' <<<"$said"; then
  echo "skipped: no debugger may run a program here"
  exit 77
fi
# The log has the receiving module's address.
receiving=$(sed -n 's/^log //p' <<<"$said" | sort -u)
sending=$(sed -n 's/^bound \(.*\) codec$/\1/p' <<<"$said" | head -1)
[ "$receiving" != "$sending" ]
diff - <(grep -E "^($(paste -sd '|' <<<"$documented")) " <<<"$said") <<END
bound $sending codec
bound $receiving host
rejected 0xFEB5D38D at 255, slot -1
bound $receiving codec
rejected 0xFEB5D38D at 28, slot 3
allocation_refused dbginfo_key_l2vpn_unpack 4
allocation_refused dbginfo_para_l2vpn_unpack_non_root 3
rejected 0x8B614502 at 70, slot -1
bound $sending host
send_failed 0x77B787DC 0xFFFFFFFF
send_failed 0x345542C5 0xFFFFFFFF
send_failed 0x494B03FB 0xFFFFFFFF
send_failed 0xFEB5D38D 0xFFFFFFFF
send_failed 0xDC5527DE 0xFFFFFFFF
send_failed 0xF5550D12 0xFFFFFFFF
END
