#!/usr/bin/env bash
# Reads tracks of 10, 100 and 1000 MB as a stream of objects, in each form, and prints the peak of memory and the speed
# (with the writer that feeds it through a pipe). Fails when a peak is over 32 MiB, or grows by more than 10 %.
#
#   scripts/memory.sh [MEGABYTES...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh libbenchmark-dev

build=build/bench
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_BENCH=ON -DRKXML_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target rkxml_bench_streams | grep -E 'error:|FAILED' || true
streams=$build/bench/rkxml_bench_streams

sizes=("$@")
[ $# -gt 0 ] || sizes=(10 100 1000)
failed=0
printf '%-8s %8s %10s %12s %8s\n' form MB points 'peak in KiB' MB/s
for form in xml xml.gz json json.gz finf finf.gz; do
  first=
  for size in "${sizes[@]}"; do
    read -r points peak seconds < <("$streams" write "$form" "$size" | "$streams" read)
    printf '%-8s %8s %10s %12s %8.0f\n' "$form" "$size" "$points" "$peak" \
      "$(awk -v mb="$size" -v s="$seconds" 'BEGIN { print mb / (s > 0 ? s : 0.01) }')"
    first=${first:-$peak}
    if [ "$peak" -gt 32768 ] || [ $((peak * 10)) -gt $((first * 11)) ]; then failed=1; fi
  done
done
[ $failed = 0 ] || { echo "memory: it grows, or is too much" >&2; exit 1; }
