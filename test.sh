#!/usr/bin/env bash
# Installs missing packages, builds with g++, and runs every test of library, platform and tool. Its
# last lines say what it left out.
#
#   ./test.sh              minutes
#   ./test.sh --all        also what needs a second compiler, zsh, a browser or Wireshark, the
#                          packages, the reference, and 64-bit ARM
#   ./test.sh PRESET...    these workflow presets of CMakePresets.json alone
set -euo pipefail
cd "$(dirname "$0")"

# Many tests wait for others.
export CTEST_PARALLEL_LEVEL="${CTEST_PARALLEL_LEVEL:-$(($(nproc) + 1))}"
tools/setup.sh g++ cmake ninja-build binutils libgtest-dev libzmq3-dev libcli11-dev \
  nlohmann-json3-dev python3 pkg-config abigail-tools
installed=$SECONDS

if [ $# -eq 0 ]; then
  cmake --preset release
  cmake --build --preset release
  built=$SECONDS
  ctest --preset release
  cat <<END
Installed in $installed s, built in $((built - installed)) s, tested in $((SECONDS - built)) s.
Left out: clang++ with its sanitizers, the benchmark's round trips, zsh, browser and Wireshark where
they are not installed, the Python package without pytest and hypothesis, the Debian packages, the
reference, 64-bit ARM, the fuzzers. Run them with
  ./test.sh --all && fuzz/run.sh
END
  exit 0
fi

tools/setup.sh clang libclang-rt-dev llvm libbenchmark-dev zsh fish xxd bsdextrautils tshark chromium \
  chromium-driver python3-selenium python3-jsonschema gdb systemtap-sdt-dev python3-pytest \
  python3-hypothesis mypy python3-numpy
presets=("$@")
[ "$1" != --all ] || presets=(release asan tsan-threads msan)
for preset in "${presets[@]}"; do
  echo "== $preset"
  cmake --workflow --preset "$preset"
done

if [ "$1" = --all ]; then
  echo "== packages"
  tools/make-packages.sh build/release
  echo "== reference"
  tools/make-reference.sh
  echo "== aarch64"
  tools/test-aarch64.sh
fi
