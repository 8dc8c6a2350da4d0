#!/usr/bin/env bash
# Installs what is missing, builds, and passes every test. Without presets also what is not a test of
# one build: the Debian packages, the reference, the library on another processor.
#
#   ./test.sh [PRESET...]    workflow presets of CMakePresets.json: by default release (g++), asan,
#                            tsan-threads and msan (clang++)
set -euo pipefail
cd "$(dirname "$0")"

tools/setup.sh g++ clang libclang-rt-dev llvm cmake ninja-build binutils libgtest-dev libzmq3-dev \
  libbenchmark-dev libcli11-dev nlohmann-json3-dev python3 pkg-config abigail-tools tshark zsh \
  chromium chromium-driver python3-selenium

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(release asan tsan-threads msan)
export CTEST_PARALLEL_LEVEL="${CTEST_PARALLEL_LEVEL:-$(nproc)}"
for preset in "${presets[@]}"; do
  echo "== $preset"
  cmake --workflow --preset "$preset"
done

if [ $# -eq 0 ]; then
  echo "== packages"
  tools/make-packages.sh
  echo "== reference"
  tools/make-reference.sh
  echo "== aarch64"
  tools/test-aarch64.sh
fi
