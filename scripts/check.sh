#!/usr/bin/env bash
# Checks format (clang-format), lint (clang-tidy), plain faults (cppcheck) and the layers.
#
#   scripts/check.sh           over the files that differ from the branch main
#   scripts/check.sh --all     over every file
#   scripts/check.sh FILE...   over these files
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

for tool in clang-format clang-tidy cppcheck; do
  command -v "$tool" >/dev/null || { echo "check: $tool is missing; on Debian: apt-get install $tool" >&2; exit 1; }
done

sources=('*.h' '*.cpp')
case ${1-} in
  --all) mapfile -t files < <(git ls-files -- "${sources[@]}") ;;
  '')
    mapfile -t files < <({ git diff --name-only --diff-filter=d "$(git merge-base main HEAD)" -- "${sources[@]}"
                           git ls-files --others --exclude-standard -- "${sources[@]}"; } | sort -u) ;;
  -*) sed -n '2,6s/^# \{0,1\}//p' "$0"; exit 2 ;;
  *) files=("$@") ;;
esac
[ ${#files[@]} -gt 0 ] || { echo "check: no file to look at"; exit 0; }

failed=0
echo "== layers"
scripts/check_layers.sh || failed=1
echo "== clang-format"
clang-format --dry-run -Werror "${files[@]}" || failed=1

compiled=()
for file in "${files[@]}"; do
  case $file in *.cpp) compiled+=("$file") ;; esac
done
if [ ${#compiled[@]} -gt 0 ]; then
  # A build directory of its own: only its compile commands are used, so that clang's own flags stand in them.
  cmake --preset tidy -DRKXML_BUILD_BENCH=ON -DRKXML_BUILD_FUZZ=ON >/dev/null
  echo "== clang-tidy"
  printf '%s\0' "${compiled[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy --quiet -p build/tidy 2>/dev/null || failed=1
  echo "== cppcheck"
  # va_end_missing and accessMoved misread scope guards and move-and-swap; clang-tidy looks for both faults better.
  cppcheck --quiet --std=c++17 --language=c++ --inline-suppr --error-exitcode=1 -j "$(nproc)" -I . \
    --enable=warning,performance,portability --library=googletest --suppress=missingIncludeSystem \
    --suppress=internalAstError --suppress=va_end_missing --suppress=accessMoved "${compiled[@]}" || failed=1
fi
[ $failed = 0 ] && echo "check: clean"
exit $failed
