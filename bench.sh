#!/usr/bin/env bash
# Builds, measures what every operation costs beside a plain copy of the record and beside other
# serialisation libraries, and what the workstation's middleware costs beside raw ZeroMQ. Prints the
# tables. Takes about ten minutes on a quiet machine.
#
#   ./bench.sh [--quick] [--transport | --python] [--document] [FILTER]
#
#   --quick      a minute or two, good for a first look and not for conclusions
#   --transport  only the middleware, five minutes
#   --python     only the Python package, beside python3-protobuf and python3-msgpack, two minutes
#   --document   also writes the plots in docs/ and the results of docs/transport-performance.md
#   FILTER       a regular expression over the names of the operations' cases,
#                group/message/operation:
#                ./bench.sh '^target/l2vpn_sync_(stp|vll_pw)/'
#                With --transport part of a name, kind/transport/records/peers/way:
#                ./bench.sh --transport rate/ipc/
#
# Leaves in build/bench: index.html, the page with the plots of the operations; *.cases.json and
# transport.json, every figure.
set -euo pipefail
cd "$(dirname "$0")"

runs=3 repetitions=3 seconds=0.03 loads=101 transport_runs=15 transport_seconds=0.1
operations=true document=false python_alone=false
while [[ ${1:-} == --* ]]; do
  case $1 in
    --quick) runs=1 seconds=0.002 loads=11 transport_runs=1 transport_seconds=0.05 ;;
    --transport) operations=false ;;
    --python) python_alone=true ;;
    --document) document=true ;;
    *) break ;;
  esac
  shift
done
if [ $# -gt 1 ] || [[ ${1:-} == -* ]]; then
  echo "Usage: ./bench.sh [--quick] [--transport | --python] [--document] [FILTER]" >&2
  exit 2
fi
filter=${1:-}

if $python_alone; then
  tools/setup.sh g++ cmake ninja-build nlohmann-json3-dev python3-numpy python3-protobuf python3-msgpack
  cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build build/bench --target mesh_l2vpn_python
  quick=()
  [ "$runs" -gt 1 ] || quick=(--quick)
  PYTHONPATH=build/bench/python exec /usr/bin/python3 -B bench/python_bench.py "${quick[@]}"
fi

tools/setup.sh g++ cmake ninja-build binutils libbenchmark-dev libzmq3-dev python3
if $operations; then
  tools/setup.sh capnproto libcapnp-dev protobuf-compiler libprotobuf-dev nanopb libnanopb-dev \
    libmsgpack-dev || echo "bench.sh: goes on without the libraries that are missing" >&2
fi
tools/setup.sh python3-matplotlib || echo "bench.sh: goes on without plots" >&2
# Debian's interpreter has Debian's matplotlib; another one may come first.
plotter=
for python in python3 /usr/bin/python3; do
  if [ -z "$plotter" ] && "$python" -c 'import matplotlib' 2>/dev/null; then
    plotter=$python
  fi
done

build=build/bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" --target l2vpn_bench l2vpn_load_time transport_bench

if $operations; then
  # Copy and operations take turns in random order, so that what slows the machine for a while slows
  # both.
  echo "Measuring: $runs run(s)."
  rm -f "$build"/*.cases.json
  for run in $(seq "$runs"); do
    if ! "$build/bench/l2vpn_bench" --benchmark_filter="${filter:-.}" \
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
  if [ -n "$plotter" ]; then
    "$plotter" bench/page.py "$build" "$build/index.html" --library "$library"
    echo "The page with the plots: $build/index.html"
  fi
fi

# A filter for operations selects no case of the transport.
if ! $operations || [ -z "$filter" ]; then
  echo "Measuring the middleware: $transport_runs run(s)."
  "$build/bench/transport/transport_bench" "$build/transport.json" "$transport_seconds" \
    "$transport_runs" "$filter"
  bench/transport_tables.py "$build/transport.json"
fi

if [ -z "$plotter" ]; then
  echo "No plots: python3-matplotlib is missing."
fi
if $document; then
  "${plotter:?"--document needs python3-matplotlib"}" bench/document.py "$build"
fi
