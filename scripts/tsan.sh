#!/usr/bin/env bash
# Builds with ThreadSanitizer and runs the tests of threads; a data race fails.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset tsan >/dev/null
if ! log=$(cmake --build --preset tsan --target threads_tests 2>&1); then
  grep -E 'error:|FAILED' -A 5 <<<"$log" >&2 || echo "$log" >&2
  exit 1
fi
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" ctest --preset tsan -R '^threads$'
