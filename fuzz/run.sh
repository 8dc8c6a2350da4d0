#!/usr/bin/env bash
# Builds the fuzzers and runs each of them.
#
#   fuzz/run.sh                      a minute each, as a check
#   fuzz/run.sh MINUTES [FUZZER...]  longer; what is learnt stays in build/fuzz/corpus
#
# Prints executions, coverage and findings. An input that fails is kept in build/fuzz/findings, and
# is run again by giving it to the fuzzer: build/asan/fuzz/fuzz_unpack build/fuzz/findings/...
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=${1:-1}
[ $# -eq 0 ] || shift
fuzzers=("$@")
[ ${#fuzzers[@]} -gt 0 ] || fuzzers=(fuzz_unpack fuzz_send fuzz_calls fuzz_tool)
# The longest input: a fixed image of 16 KiB must fit where images are read, and a long vtable that
# many tables share.
declare -A longest=([fuzz_unpack]=20000 [fuzz_send]=2048 [fuzz_calls]=2048 [fuzz_tool]=20000)

tools/setup.sh clang libclang-rt-dev llvm cmake ninja-build libgtest-dev libcli11-dev nlohmann-json3-dev
cmake --preset asan >/dev/null
cmake --build --preset asan --target "${fuzzers[@]}"
learnt=build/fuzz
mkdir -p "$learnt/findings"

run() {
  local fuzzer=$1 passed=0
  local log=$learnt/$fuzzer.log
  mkdir -p "$learnt/corpus/$fuzzer"
  "build/asan/fuzz/$fuzzer" "$learnt/corpus/$fuzzer" "fuzz/corpus/$fuzzer" \
    -dict=fuzz/mesh.dict -max_len="${longest[$fuzzer]}" -max_total_time=$((minutes * 60)) \
    -timeout=30 -artifact_prefix="$learnt/findings/$fuzzer-" -print_final_stats=1 \
    >"$log" 2>&1 || passed=$?
  echo "$fuzzer: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") executions," \
    "$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1) edges covered"
  return "$passed"
}

# Side by side, as there is no more than one thread in each.
declare -A running=()
for fuzzer in "${fuzzers[@]}"; do
  run "$fuzzer" &
  running[$fuzzer]=$!
done
failed=()
for fuzzer in "${fuzzers[@]}"; do
  wait "${running[$fuzzer]}" || failed+=("$fuzzer")
done

for fuzzer in "${failed[@]}"; do
  echo "$fuzzer failed:" >&2
  grep -v 'REDUCE\|NEW\|RELOAD\|pulse\|# Uses' "$learnt/$fuzzer.log" | tail -n 60 >&2
done
[ ${#failed[@]} -eq 0 ]
