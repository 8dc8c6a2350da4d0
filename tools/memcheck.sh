#!/usr/bin/env bash
# Runs every operation of every message under valgrind: random records, damaged messages, failing
# allocations, sixteen threads. Fails for invalid accesses, uninitialised bytes and leaks.
#
#   tools/memcheck.sh [ROUNDS]    rounds of random records; default 3, about a minute
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++ cmake ninja-build valgrind
rounds=${1:-3}

cmake --preset release -B build/memcheck -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/memcheck --target exercise
watch=(valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=all
       --errors-for-leak-kinds=all --trace-children=yes --fair-sched=try)
"${watch[@]}" build/memcheck/tests/exercise/exercise records "$rounds"
"${watch[@]}" build/memcheck/tests/exercise/exercise threads 0.1 1
echo "valgrind: no errors"
