#!/usr/bin/env bash
# The shared object has the probes that docs/observing.md lists, and a debugger stops at one with its
# arguments. Prints "skipped" where the system lets no debugger run a program.
#
#   probes.sh DECODE_FILE KEY_FILE DOCUMENT
set -euo pipefail
decode_file=$1 key=$2 document=$3
library=$(ldd "$decode_file" | awk '$1 ~ /^libmesh_l2vpn\.so/ { print $3 }')
documented=$(sed -n 's/^| `\([a-z_]*\)` | .*/\1/p' "$document" | sort -u)
[ -n "$documented" ]
found=$(readelf -n "$library" | awk '$1 == "Provider:" { ours = $2 == "mesh_l2vpn" }
  $1 == "Name:" && ours { print $2 }' | sort -u)
diff <(echo "$documented") <(echo "$found")

command -v gdb >/dev/null || { echo "skipped: gdb is missing"; exit 77; }
cut=$(mktemp)
trap 'rm -f "$cut"' EXIT
head -c 30 "$key" >"$cut"
said=$(gdb -batch -nx -ex 'set breakpoint pending on' -ex 'break -probe-stap mesh_l2vpn:rejected' \
  -ex run -ex 'printf "0x%X at %d, slot %d\n", $_probe_arg0, $_probe_arg1, $_probe_arg2' \
  --args "$decode_file" "$cut" 2>&1) || true
if grep -qi 'ptrace' <<<"$said"; then
  echo "skipped: no debugger may run a program here"
  exit 77
fi
grep -qF '0xFEB5D38D at 28, slot 3' <<<"$said" || { echo "$said"; exit 1; }
