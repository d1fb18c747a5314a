#!/usr/bin/env bash
# Builds with gcov, runs the tests and prints the lines of the library that they reach, folder by folder.
#
#   scripts/coverage.sh           per folder
#   scripts/coverage.sh --files   also per file
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
command -v gcovr >/dev/null || { echo "coverage: gcovr is missing; on Debian: apt-get install gcovr" >&2; exit 1; }
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

build=${RKXML_COVERAGE_BUILD:-build/coverage}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG='-O0 --coverage' \
  -DRKXML_INSTALL=OFF >/dev/null
cmake --build "$build" | grep -E 'warning:|error:|FAILED' -A 5 || true
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --output-on-failure -j "$(nproc)" -E '^(docs|install)' >/dev/null ||
  echo "coverage: some tests failed, see ctest --test-dir $build --rerun-failed" >&2

gcovr --root . --filter 'RkXmlLib16/' --object-directory "$build" --exclude-throw-branches --csv - "$build" 2>/dev/null |
  awk -F, -v files="${1-}" '
    NR == 1 { next }
    { split($1, part, "/"); folder = part[2]; total[folder] += $2; hit[folder] += $3; all += $2; reached += $3
      if (files == "--files") printf "%6.1f %%  %5d  %s\n", $2 ? 100 * $3 / $2 : 100, $2, $1 }
    END {
      for (f in total) printf "%6.1f %%  %5d  %s\n", 100 * hit[f] / total[f], total[f], f | "sort -k 4"
      close("sort -k 4")
      printf "%6.1f %%  %5d  all\n", 100 * reached / all, all
    }'
