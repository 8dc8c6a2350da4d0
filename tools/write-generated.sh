#!/usr/bin/env bash
# Writes anew everything that is generated: the headers with the functions, docs/messages.md, the
# baselines in abi/ and the golden files. New baselines belong in one commit with the CHANGELOG entry
# that announces them.
#
#   tools/write-generated.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/write-pages.sh
tools/announce-interface.sh
tools/setup.sh libgtest-dev
cmake --preset release >/dev/null
cmake --build --preset release --target write_golden
build/release/tests/delivered/golden/write_golden tests/delivered/golden
git status --short
