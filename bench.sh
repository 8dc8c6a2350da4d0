#!/usr/bin/env bash
# Builds, measures what every operation costs beside a plain copy of the record and beside other
# serialisation libraries, and prints the tables. Takes about five minutes on a quiet machine.
#
#   ./bench.sh [--quick] [FILTER]
#
#   --quick   a minute at most, good for a first look and not for conclusions
#   FILTER    a regular expression over the cases' names, group/message/operation:
#             ./bench.sh '^target/l2vpn_sync_(stp|vll_pw)/'
#
# Leaves in build/bench: index.html, the page with the plots; *.cases.json, every figure.
set -euo pipefail
cd "$(dirname "$0")"

runs=3 repetitions=3 seconds=0.03 loads=101
if [ "${1:-}" = --quick ]; then
  runs=1 repetitions=3 seconds=0.002 loads=11
  shift
fi
filter=${1-.}
if [ $# -gt 1 ] || [[ $filter == -* ]]; then
  echo "Usage: ./bench.sh [--quick] [FILTER]" >&2
  exit 2
fi

tools/setup.sh g++ cmake ninja-build binutils libbenchmark-dev python3
tools/setup.sh capnproto libcapnp-dev protobuf-compiler libprotobuf-dev nanopb libnanopb-dev \
  libmsgpack-dev || echo "bench.sh: goes on without the libraries that are missing" >&2
tools/setup.sh python3-matplotlib || echo "bench.sh: goes on without plots" >&2

build=build/bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" --target l2vpn_bench l2vpn_load_time

# Copy and operations take turns in random order, so that what slows the machine for a while slows
# both.
echo "Measuring: $runs run(s)."
rm -f "$build"/*.cases.json
for run in $(seq "$runs"); do
  if ! "$build/bench/l2vpn_bench" --benchmark_filter="$filter" \
    --benchmark_min_time="$seconds" --benchmark_repetitions="$repetitions" \
    --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
    --benchmark_out="$build/run-$run.cases.json" --benchmark_out_format=json \
    >"$build/bench.log" 2>&1; then
    tail -n 5 "$build/bench.log" >&2
    exit 1
  fi
done

library=$build/libmesh_l2vpn.so
for _ in $(seq "$loads"); do
  "$build/bench/l2vpn_load_time" "$library"
done >"$build/load_time.txt"

bench/tables.py "$build" --library "$library"
# Debian's interpreter has Debian's matplotlib; another one may come first.
for python in python3 /usr/bin/python3; do
  if "$python" -c 'import matplotlib' 2>/dev/null; then
    "$python" bench/page.py "$build" "$build/index.html" --library "$library"
    echo "The page with the plots: $build/index.html"
    exit 0
  fi
done
echo "No page: python3-matplotlib is missing."
