#!/usr/bin/env bash
# Builds the benchmarks and prints their tables: every operation on a document as a ratio to bare expat, and conversions
# of values. Measures the library as scripts/tune.sh builds it; --untuned comes first and measures the plain release.
# --large adds documents of 100 MB, --plot draws docs/performance.svg from those of 10 MB; other options go to Google
# Benchmark.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh libbenchmark-dev

if [ "${1-}" = --untuned ]; then
  shift
  build=build/bench
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
  fi
  log=$(mktemp)
  trap 'rm -f "$log"' EXIT
  if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_BENCH=ON -DRKXML_BUILD_TESTS=OFF &&
         cmake --build "$build" --target rkxml_bench rkxml_bench_values; } >"$log" 2>&1; then
    tail -n 100 "$log"
    echo "bench: it does not build" >&2
    exit 1
  fi
else
  build=build/tuned
  scripts/tune.sh -DRKXML_BUILD_BENCH=ON
fi

if [ "${1-}" = --plot ]; then
  shift
  "$build/bench/rkxml_bench" --benchmark_filter='10 MB:' "$@" | tee "$build/bench.txt"
  scripts/plot_bench.sh <"$build/bench.txt" >docs/performance.svg
  exit
fi
"$build/bench/rkxml_bench" "$@"
echo
"$build/bench/rkxml_bench_values"
