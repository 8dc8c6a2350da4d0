#!/usr/bin/env bash
# Builds for 64-bit ARM and runs under qemu the tests that tell most about a processor: agreement of
# engine and oracle, golden bytes, sending, examples. Not the behaviour tests, which take minutes to
# compile. qemu is slow, so the comparison with the oracle runs a fiftieth of its rounds.
#
#   tools/test-aarch64.sh
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh g++-aarch64-linux-gnu qemu-user cmake ninja-build googletest
build=build/aarch64
tests=(agreement/agreement_test delivered/golden/golden_test msg/msg_test msg/descriptors_test)
cmake --preset aarch64 >/dev/null
cmake --build --preset aarch64 --target mesh_l2vpn own_host decode_file "${tests[@]##*/}"

export MESH_TEST_ROUNDS=0.02
run=(qemu-aarch64 -L /usr/aarch64-linux-gnu)
for test in "${tests[@]}"; do
  "${run[@]}" "$build/tests/$test" --gtest_brief=1
done
"${run[@]}" -E LD_LIBRARY_PATH="$build" "$build/examples/own_host" >/dev/null
"${run[@]}" -E LD_LIBRARY_PATH="$build" "$build/examples/decode_file" examples/key.bin
