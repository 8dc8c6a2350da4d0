#!/usr/bin/env bash
# The shared object exports what its header declares, and needs the C and C++ runtime alone.
#
#   shared_object.sh LIBRARY HEADER
set -euo pipefail
library=$1 header=$2
declared=$(grep -o '\bmesh_l2vpn_[a-z_]*(' "$header" | tr -d '(' | sort -u)
exported=$(nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort)
[ -n "$exported" ]
diff <(echo "$declared") <(echo "$exported")
# Nothing of a middleware, of a host's services, of the library itself.
if nm -D --undefined-only "$library" | grep -E ' (MESH_|DDM_|mesh_)|l2vpn'; then
  echo "$library imports the functions above"
  exit 1
fi
unexpected=$(objdump -p "$library" | awk '$1 == "NEEDED" { print $2 }' |
  grep -vE '^(libstdc\+\+|libgcc_s|libc|libm|ld-linux[-a-z0-9]*|lib[atu]*san|libclang_rt[-.a-z0-9_]*)\.so' || true)
if [ -n "$unexpected" ]; then
  echo "$library needs $unexpected"
  exit 1
fi
