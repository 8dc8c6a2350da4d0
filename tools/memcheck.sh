#!/usr/bin/env bash
# Watches the shared object with valgrind while every operation of every message is exercised: random
# records and damaged messages, memory refused at times, sixteen threads at once. Fails for any access
# that is not right, any byte that nobody wrote and any block that is not given back.
#
#   tools/memcheck.sh [ROUNDS]    of random records, 3 by default (about a minute)
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
echo "valgrind: nothing to complain of"
