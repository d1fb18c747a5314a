#!/usr/bin/env bash
# Builds everything and runs all tests, plain and under AddressSanitizer and UndefinedBehaviorSanitizer; with --tuned also
# as scripts/tune.sh builds the library.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# Tests under a comma locale and under Turkish casing rules skip where these locales are absent. They are made in the
# build tree, which needs no rights and leaves the machine as it is.
locales=$PWD/build/locales
mkdir -p "$locales"
for locale in de_DE tr_TR; do
  [ -d "$locales/$locale.UTF-8" ] ||
    localedef -i "$locale" -f UTF-8 "$locales/$locale.UTF-8" >/dev/null 2>&1 ||
    echo "test: no locale $locale.UTF-8 here, its tests are skipped"
done
export LOCPATH=$locales

run() {
  local preset=$1 log
  log=$(mktemp)
  echo "== $preset: build"
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
    tail -n 100 "$log"
    rm -f "$log"
    echo "test: $preset does not build" >&2
    return 1
  fi
  rm -f "$log"
  echo "== $preset: test"
  ctest --preset "$preset" -j "$(nproc)"
}

run tests  # warnings are no errors below: what the optimiser warns of is wrong where sanitizers rewrite the code
run asan

if [ "${1-}" = --tuned ]; then
  scripts/tune.sh -DRKXML_BUILD_TESTS=ON -DRKXML_BUILD_EXAMPLES=ON
  echo "== tuned: test"
  ctest --preset tuned -j "$(nproc)"
fi
