#!/usr/bin/env bash
# Builds the benchmarks and runs them; each prints a table with its ratios.
#
#   scripts/bench.sh [name ...] [--benchmark_filter=NV21 ...]
#
#   engine         point effects beside memcpy, OpenCV and libyuv
#   looks          looks beside memcpy and OpenCV, and the setup times of all effects
#   adjust         the parametric adjustments beside memcpy, OpenCV and libyuv
#   rows           plain beside vector forms
#   convert        conversions by a record beside libyuv, OpenCV and swscale
#   image_convert  conversions of whole images beside libyuv and OpenCV, and in bands
#   geometry       turned and levelled pictures beside OpenCV
#   smear          motion blur and waterfall beside OpenCV
#   segment        the max-flow solver beside Boost.Graph, regions beside OpenCV
#   cutout         strokes on a picture
#   retouch        filled holes beside OpenCV
#   etc            the texture codec beside etc1tool
#
# Without a name: all. Options go to every benchmark.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

all=(engine looks adjust rows convert image_convert geometry smear segment cutout retouch etc)
names=()
options=()
for argument in "$@"; do
  if [[ $argument == -* ]]; then
    options+=("$argument")
  elif [[ " ${all[*]} " == *" $argument "* ]]; then
    names+=("$argument")
  else
    echo "bench.sh: no benchmark named $argument; there are ${all[*]}" >&2
    exit 2
  fi
done
if ((${#names[@]} == 0)); then
  names=("${all[@]}")
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
