#!/usr/bin/env bash
# Builds the benchmarks and prints their tables: every road of a document as a ratio to bare expat, and the conversions
# of values. --large adds documents of 100 MB; other options go to Google Benchmark.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh libbenchmark-dev

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_BENCH=ON -DRKXML_BUILD_TESTS=OFF &&
       cmake --build build/bench --target rkxml_bench rkxml_bench_values; } >"$log" 2>&1; then
  tail -n 100 "$log"
  echo "bench: it does not build" >&2
  exit 1
fi

build/bench/bench/rkxml_bench "$@"
echo
build/bench/bench/rkxml_bench_values
