#!/usr/bin/env bash
# Builds with gcov, runs the tests and prints the lines of the library that they reach, folder by folder.
#
#   scripts/coverage.sh           per folder
#   scripts/coverage.sh --files   also per file
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

build=${RKXML_COVERAGE_BUILD:-build/coverage}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG='-O0 --coverage' \
  -DRKXML_INSTALL=OFF >/dev/null
if ! cmake --build "$build" >"$work/build" 2>&1; then
  grep -E 'error:|FAILED' -A 5 "$work/build" >&2 || cat "$work/build" >&2
  exit 1
fi
find "$build" -name '*.gcda' -delete
result=0
if ! ctest --test-dir "$build" --output-on-failure -j "$(nproc)" -E '^(docs|install)' >"$work/tests"; then
  sed -n '/tests passed/,$p' "$work/tests" >&2
  result=1
fi

# gcov tells each file and, on the next line, its share; headers come with every file that includes them and are left out.
# It ends well whatever it meets.
find "$build/RkXmlLib16" -name '*.gcda' -print0 | xargs -0 gcov --no-output >"$work/shares" 2>"$work/errors" || result=1
if [ -s "$work/errors" ]; then
  cat "$work/errors" >&2
  result=1
fi
if ! grep -q '^Lines executed' "$work/shares"; then
  echo "coverage: gcov found no lines" >&2
  exit 1
fi
awk -v files="${1-}" '
  /^File / { name = substr($0, 7, length($0) - 7); next }
  /^Lines executed/ && name ~ /RkXmlLib16\/[a-z]+\/.*\.cpp$/ {
    sub(/^.*RkXmlLib16\//, "", name)
    split($0, part, /[:%]| of /)
    lines = part[4]; reached = part[2] * lines / 100
    folder = name; sub(/\/.*/, "", folder)
    total[folder] += lines; hit[folder] += reached; all += lines; hits += reached
    if (files == "--files") printf "%6.1f %%  %5d  %s\n", part[2], lines, name
  }
  /^Lines executed/ { name = "" }
  END {
    for (f in total) printf "%6.1f %%  %5d  %s\n", 100 * hit[f] / total[f], total[f], f | "sort -k 4"
    close("sort -k 4")
    printf "%6.1f %%  %5d  all\n", 100 * hits / all, all
  }' "$work/shares"
exit $result
