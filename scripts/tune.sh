#!/usr/bin/env bash
# Builds the release in build/tuned with profile-guided optimisation; the training run is that of bench/. Needs g++;
# options go to cmake. Then: cmake --install build/tuned
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
step() {
  if ! "$@" >"$log" 2>&1; then
    tail -n 100 "$log"
    echo "tune: this failed: $*" >&2
    exit 1
  fi
}

echo "== tuned: record"
step cmake --preset tuned "$@" -DRKXML_BUILD_TOOLS=ON -DRKXML_PROFILE=record
step cmake --build --preset tuned --target rkxml_train rkxml_bench_values
step find build/tuned -name '*.gcda' -delete
step build/tuned/bench/rkxml_train
step build/tuned/bench/rkxml_bench_values
echo "== tuned: build"
step cmake --preset tuned "$@" -DRKXML_PROFILE=use
step cmake --build --preset tuned
