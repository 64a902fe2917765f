#!/usr/bin/env bash
# Builds the benchmarks and runs them; each prints a table with its ratios.
#
#   scripts/bench.sh [engine|looks|rows|geometry|smear|retouch|etc ...] [--benchmark_filter=NV21 ...]
#
# engine: point effects beside memcpy, OpenCV and libyuv. looks: looks beside memcpy and OpenCV, and
# the setup times of all effects. rows: plain beside vector forms. geometry: turned and levelled
# pictures, smear: motion blur and waterfall, retouch: a filled hole, all three beside OpenCV. etc: the
# texture codec beside etc1tool. Without a name: all. Options go to every benchmark.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

names=()
options=()
for argument in "$@"; do
  case $argument in
    engine | looks | rows | geometry | smear | retouch | etc) names+=("$argument") ;;
    -*) options+=("$argument") ;;
    *)
      echo "bench.sh: no benchmark named $argument; there are engine, looks, rows, geometry, smear, retouch and etc" >&2
      exit 2
      ;;
  esac
done
if ((${#names[@]} == 0)); then
  names=(engine looks rows geometry smear retouch etc)
fi

scripts/install-deps.sh build tool bench
mkdir -p build/logs
echo "Building ..."
if ! { cmake --preset bench && cmake --build --preset bench; } >build/logs/bench.log 2>&1; then
  tail -n 60 build/logs/bench.log
  exit 1
fi

for name in "${names[@]}"; do
  echo
  echo "$name"
  "build/bench/bench/bench_$name" "${options[@]}"
done
