#!/usr/bin/env bash
# Measures line and branch coverage of host/, wire/ and msg/.
#
#   tools/coverage.sh
#
# Writes build/coverage/report/: branches.txt, with every branch not taken, and index.html. Fails for a
# branch not taken that docs/testing.md does not explain.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh clang libclang-rt-dev llvm cmake ninja-build libgtest-dev python3-minimal

build=${MESH_L2VPN_COVERAGE_BUILD:-build/coverage}
# Tests of the engine rather than of single messages. Those of tests/host need a process each. Random
# tests add little to the exhaustive ones, so few rounds suffice.
tests=(agreement_test bounded_memory_test descriptors_test exhaustive_test msg_test wire_test)
export MESH_TEST_ROUNDS=0.02

cmake --preset coverage -B "$build" >/dev/null
cmake --build "$build" --target "${tests[@]}" tests/host/all

rm -rf "$build/profiles" "$build/report"
mkdir -p "$build/profiles" "$build/report"
LLVM_PROFILE_FILE=$(realpath "$build")/profiles/%m.profraw
export LLVM_PROFILE_FILE

objects=()
for test in "${tests[@]}" host_test; do
  executable=$(find "$build/tests" -type f -name "$test" -perm -u+x)
  objects+=(${objects:+-object} "$executable")
  [ "$test" = host_test ] || "$executable" --gtest_brief=1
done
ctest --test-dir "$build/tests/host" --output-on-failure --progress

llvm-profdata merge -sparse -o "$build/profile" "$build"/profiles/*.profraw
sources=("$PWD/host" "$PWD/wire" "$PWD/msg")
llvm-cov show "${objects[@]}" -instr-profile="$build/profile" -format=html -show-branches=count \
  -show-instantiations=false -output-dir="$build/report" "${sources[@]}"
llvm-cov export "${objects[@]}" -instr-profile="$build/profile" "${sources[@]}" \
  >"$build/coverage.json"
python3 tools/coverage_branches.py "$build/coverage.json" docs/testing.md |
  tee "$build/report/branches.txt"
