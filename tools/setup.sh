#!/usr/bin/env bash
# Installs the named Debian packages that are missing. Changes nothing if none is.
#
#   tools/setup.sh PACKAGE...
set -euo pipefail

if ! command -v dpkg-query >/dev/null; then
  echo "Not Debian: make sure that the contents of these packages are installed: $*" >&2
  exit 0
fi

missing=()
for package in "$@"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
  as_root=(env)
elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
  as_root=(sudo env)
else
  echo "This needs root, and sudo asks for a password. Run this, then start again:" >&2
  echo "  sudo apt-get update && sudo apt-get install ${missing[*]}" >&2
  exit 1
fi
as_root+=(DEBIAN_FRONTEND=noninteractive)
"${as_root[@]}" apt-get update -q </dev/null >/dev/null
"${as_root[@]}" apt-get install -qy --no-install-recommends "${missing[@]}" </dev/null >/dev/null
