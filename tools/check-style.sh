#!/usr/bin/env bash
# Checks the format of all sources, and lints the library. Changes nothing.
#
#   tools/check-style.sh                     only the format
#   tools/check-style.sh --lint [FILE...]    also clang-tidy, on these files; without any, minutes on
#                                            the whole library
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

tools/setup.sh git clang-format
git ls-files -z -- '*.c' '*.h' '*.cpp' '*.hpp' | xargs -0 clang-format --dry-run --Werror

if [ "${1:-}" = --lint ]; then
  tools/setup.sh clang-tidy clang cmake ninja-build
  # clang-tidy cannot read a precompiled header that nobody built.
  cmake --preset clang -B build/lint -DBUILD_TESTING=OFF -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
    >/dev/null
  files=("${@:2}")
  [ ${#files[@]} -gt 0 ] || files=('host/*.cpp' 'wire/*.cpp' 'msg/*.cpp' 'l2vpn_*/*.cpp')
  git ls-files -z -- "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/lint --quiet
fi
