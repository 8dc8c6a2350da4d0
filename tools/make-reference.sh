#!/usr/bin/env bash
# Generates the reference of the public headers in build/reference/html. Fails for warnings and for
# missing functions.
#
#   tools/make-reference.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh doxygen
mkdir -p build/reference
doxygen docs/Doxyfile

wanted=$(sed -n 's/^MESH_L2VPN_API [a-z0-9_]* \([a-z0-9_]*\)(.*/\1/p' l2vpn_*/include/mesh_l2vpn/*_functions.h | sort)
found=$(sed -n '/<name>[a-z0-9_]*_functions\.h</,/<\/compound>/{
  /kind="function"/,/<\/member>/s/.*<name>\(.*\)<\/name>.*/\1/p
}' build/reference/mesh_l2vpn.tag | sort -u)
if ! missing=$(diff <(echo "$wanted") <(echo "$found")); then
  printf 'The reference and the headers do not hold the same functions:\n%s\n' "$missing" >&2
  exit 1
fi
echo "build/reference/html/index.html: $(wc -l <<<"$wanted") functions"
