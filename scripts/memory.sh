#!/usr/bin/env bash
# Writes tracks of 10, 100 and 1000 MB as a stream of objects, reads them so, and converts them from each form to another
# one. Prints the peak of memory of each. Fails when a peak is over 32 MiB, or grows by more than 10 %.
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
if ! log=$(cmake --build "$build" --target rkxml_bench_streams rkxml 2>&1); then
  tail -n 100 <<<"$log" >&2
  echo "memory: it does not build" >&2
  exit 1
fi
streams=$build/bench/rkxml_bench_streams
rkxml=$build/tools/rkxml/rkxml
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sizes=("$@")
[ $# -gt 0 ] || sizes=(10 100 1000)
declare -A smallest
failed=0
printf '%-22s %8s %12s %8s\n' operation MB 'peak in KiB' seconds

# check OPERATION SIZE: the line that measure has left in $work/measured.
check() {
  local peak seconds
  read -r peak seconds <"$work/measured"
  printf '%-22s %8s %12s %8s\n' "$1" "$2" "$peak" "$seconds"
  smallest[$1]=${smallest[$1]:-$peak}
  if [ "$peak" -gt 32768 ] || [ $((peak * 10)) -gt $((${smallest[$1]} * 11)) ]; then failed=1; fi
}

declare -A converted=([xml]=finf [finf]=xml [json]=xml [xml.gz]=json.gz [finf.gz]=json.gz [json.gz]=finf.gz)
for size in "${sizes[@]}"; do
  for form in xml xml.gz json json.gz finf finf.gz; do
    "$streams" measure "$streams" write "$form" "$size" >"$work/a.$form" 2>"$work/measured"
    check "write $form" "$size"
    "$streams" measure "$streams" read <"$work/a.$form" >"$work/points" 2>"$work/measured"
    check "read $form" "$size"
    "$streams" measure "$rkxml" convert --quiet "$work/a.$form" "$work/b.${converted[$form]}" 2>"$work/measured"
    check "$form to ${converted[$form]}" "$size"
    rm "$work"/a.* "$work"/b.*
  done
done
[ $failed = 0 ] || { echo "memory: it grows, or is too much" >&2; exit 1; }
