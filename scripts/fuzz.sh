#!/usr/bin/env bash
# Builds a fuzz target with libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer and runs it.
#
#   scripts/fuzz.sh TARGET SECONDS   xml, scanner, classes, json, plainjson, fastinfoset, tokens, lengths, inflate,
#                                    pieces, values, pattern, writer, schema or dynamic
#
# What it finds on the way stays in build/fuzz/found/TARGET. A crash is put into fuzz/old_crashes/TARGET, where the tests
# replay it: keep it there, small, with the repair.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

target=${1-} seconds=${2-}
if [ -z "$seconds" ] || [ ! -f "fuzz/$target.cpp" ] || [ ! -d "fuzz/corpus/$target" ]; then
  sed -n '2,8s/^# \{0,1\}//p' "$0"
  exit 2
fi
command -v clang++ >/dev/null || { echo "fuzz: clang++ is missing; on Debian: apt-get install clang" >&2; exit 1; }
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

cmake --preset fuzz -DRKXML_BUILD_TESTS=OFF >/dev/null
cmake --build --preset fuzz --target "fuzz_$target" | grep -E 'warning:|error:|FAILED' || true
found=build/fuzz/found/$target
mkdir -p "$found" "fuzz/old_crashes/$target"
dictionary=()
[ ! -f "fuzz/$target.dict" ] || dictionary=(-dict="fuzz/$target.dict")
exec nice -n 10 "build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
  -print_final_stats=1 "${dictionary[@]}" -artifact_prefix="fuzz/old_crashes/$target/" "$found" "fuzz/corpus/$target" "fuzz/old_crashes/$target"
