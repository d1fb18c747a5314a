#!/usr/bin/env bash
# abi_test.sh LIBRARY OUT COMPILER INCLUDE: the binary interface is the one that stands beside this script.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
"$here/dump.sh" "$@"
failed=0
for file in classes.txt symbols.txt; do
  diff -U 1 --show-function-line='^class ' --label "$file as promised" --label "$file as built" \
    "$here/$file" "$2/$file" || failed=1
done
if [ $failed != 0 ]; then
  echo
  echo "The binary interface has changed; docs/abi.md tells what programs rely on."
  echo "If the change is meant and allowed: scripts/update_abi.sh, and commit the new texts with it."
fi
exit $failed
