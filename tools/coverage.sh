#!/usr/bin/env bash
# Measures what the tests reach of host/, wire/ and msg/: every line, and both ways of every branch.
#
#   tools/coverage.sh
#
# Writes build/coverage/report/: branches.txt, with every branch that was not taken, and index.html.
# Fails where a branch was not taken that docs/testing.md does not explain.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh clang libclang-rt-dev llvm cmake ninja-build libgtest-dev python3-minimal

build=${MESH_L2VPN_COVERAGE_BUILD:-build/coverage}
# The tests that are about the engine's ways, not about its messages; those of tests/host want a
# process each. Random ones add little to the exhaustive ones, so a few rounds do.
tests=(agreement_test bounded_memory_test descriptors_test exhaustive_test msg_test wire_test)
export MESH_TEST_ROUNDS=0.02

cmake --preset coverage -B "$build" >/dev/null
cmake --build "$build" --target "${tests[@]}" host_test

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
