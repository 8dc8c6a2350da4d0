#!/usr/bin/env bash
# Every test that a document names, as `Suite.Name` or `Suite.*`, exists, in the sources: some are
# skipped where programs are missing, and sanitized builds do not list single tests.
#
#   named_tests.sh SOURCE_DIRECTORY
set -euo pipefail
cd "$1"

names=$(grep -rhoE --include='*.md' '`([A-Z][A-Za-z]+/)?[A-Z][A-Za-z.]*\.[A-Z*][A-Za-z0-9*]*`' ./*.md docs platform fuzz |
        tr -d '`' | sed 's|^[A-Za-z]*/||' | sort -u)
[ "$(wc -w <<<"$names")" -gt 60 ] || { echo "FAILED: the documents name no tests"; exit 1; }

missing=0
while read -r name; do
  suite=${name%.*}
  pattern=${name##*.}
  pattern=${pattern//\*/[A-Za-z0-9]*}
  # The last form: a function of a CMakeLists.txt that names its tests after their suite.
  grep -rqE --include='*.cpp' "^TEST(_F|_P)?\($suite, *$pattern\)" tests ||
    grep -rqE --include=CMakeLists.txt "add_test\(NAME $suite\.$pattern" tests ||
    { grep -rqE --include=CMakeLists.txt "add_test\(NAME $suite\.\\$" tests &&
      grep -rqE --include=CMakeLists.txt "_test\($pattern " tests; } || {
    echo "FAILED: the documents name $name, which does not exist"
    missing=1
  }
done <<<"$names"
exit $missing
