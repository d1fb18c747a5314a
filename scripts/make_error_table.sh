#!/usr/bin/env bash
# make_error_table.sh [--check]: writes the table of error codes in docs/errors.md anew from base/ErrorTable.h, or only
# checks that it is the same.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
page=docs/errors.md

table() {
  echo '```text'
  # A row may go on over several lines.
  awk '/^RKXML_ERROR\(/ { row = "" } /^RKXML_ERROR\(/ || row != "" { row = row $0; if ($0 ~ /\)$/) { print row; row = "" } }' \
    RkXmlLib16/base/ErrorTable.h |
    sed -E 's/^RKXML_ERROR\( *([0-9]+), ([A-Za-z]+), +"([^"]*)".*/\1 \2 \3/; s/a value breaks the facet .*//; s/^([0-9]+ [A-Za-z]+) (an?|the) /\1 /' | sort -n |
    while read -r code name meaning; do printf '%s %-21s  %s\n' "$code" "$name" "$meaning"; done | sed 's/ *$//'
  echo '```'
}

fresh=$(TABLE=$(table) awk '
  /^<!-- end of the codes -->/ { skipping = 0 }
  !skipping { print }
  /^<!-- codes/ { print ENVIRON["TABLE"]; skipping = 1 }' "$page")
if [ "${1-}" = --check ]; then
  diff <(echo "$fresh") "$page" || { echo "run scripts/make_error_table.sh"; exit 1; }
else
  echo "$fresh" >"$page"
fi
