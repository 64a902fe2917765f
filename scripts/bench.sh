#!/usr/bin/env bash
# Builds the benchmarks and runs them; each prints a table with its ratios. Arguments go to every
# benchmark, for instance --benchmark_filter=NV21.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh build tool bench
mkdir -p build/logs
echo "Building ..."
if ! { cmake --preset bench && cmake --build --preset bench; } >build/logs/bench.log 2>&1; then
  tail -n 60 build/logs/bench.log
  exit 1
fi

mapfile -t benchmarks < <(find build/bench/bench -maxdepth 1 -type f -executable -name 'bench_*' | sort)
for benchmark in "${benchmarks[@]}"; do
  echo
  echo "${benchmark##*/}"
  "$benchmark" "$@"
done
