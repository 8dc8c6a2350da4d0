#!/usr/bin/env bash
# Fails when LIBRARY's binary interface is not the one that BASELINE describes.
#
#   compare.sh BASELINE LIBRARY [OPTION OF abidiff...]
set -euo pipefail
if abidiff "${@:3}" "$1" "$2"; then
  exit 0
fi
cat >&2 <<'END'

The binary interface is not the announced one. If that is meant: docs/versions.md says which version
may bring it, CHANGELOG.md announces it, tools/announce-interface.sh renews the baseline.
END
exit 1
