#!/usr/bin/env bash
# Builds for 64-bit ARM and passes there, under qemu, what tells most of the library on a processor:
# engine and oracle agree, golden bytes, sending, examples. (Not the behaviour tests, whose compiling
# takes minutes.) qemu is slow: the comparison with the oracle makes a fiftieth of its rounds.
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
