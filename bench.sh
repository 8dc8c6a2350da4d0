#!/usr/bin/env bash
# Builds, measures what every operation costs beside a plain copy of the record, and prints the
# tables. Results: build/bench/*.json.
#
#   ./bench.sh [--quick] [FILTER]
#
#   --quick   a few seconds instead of minutes; good for a first look, not for conclusions
#   FILTER    a regular expression over the cases' names, group/message/operation:
#             ./bench.sh '^target/l2vpn_sync_(stp|vll_pw)/'
set -euo pipefail
cd "$(dirname "$0")"

seconds=0.05 repetitions=9
if [ "${1:-}" = --quick ]; then
  seconds=0.005 repetitions=3
  shift
fi
filter=${1-.}
if [ $# -gt 1 ] || [[ $filter == -* ]]; then
  echo "Usage: ./bench.sh [--quick] [FILTER]" >&2
  exit 2
fi

tools/setup.sh g++ cmake ninja-build libbenchmark-dev python3

build=build/bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" --target l2vpn_bench

rm -f "$build"/*.cases.json
# Copy and operations take turns in random order, so that what slows the machine for a while slows
# both.
"$build/bench/l2vpn_bench" --benchmark_filter="$filter" \
  --benchmark_min_time="$seconds" --benchmark_repetitions="$repetitions" \
  --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
  --benchmark_out="$build/all.cases.json" --benchmark_out_format=json >/dev/null
python3 bench/tables.py "$build"
