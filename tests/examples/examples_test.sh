#!/usr/bin/env bash
# Runs the example programs on the sample documents and compares what they say and write.
set -u
gpx_stats=$1 gpx_edit=$2 order_pay=$3 large_file=$4 data=$5
expected=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/expected
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# expect NAME FILE WANTED: what stands in FILE is what stands in WANTED.
expect() {
  if ! diff -u "$3" "$2" >"$work/diff"; then
    echo "FAILED: $1"
    cat "$work/diff"
    failures=$((failures + 1))
  fi
}

"$gpx_stats" "$data/track.gpx" "$work/track.gpx" >"$work/stats"
expect "gpx_stats tells the track" "$work/stats" "$expected/stats.txt"

# The same track through every form: it tells the same, and comes back as the same document.
previous=$work/track.gpx
for form in track.gpx.gz track.json track.json.gz track.finf track.finf.gz back.gpx; do
  "$gpx_stats" "$previous" "$work/$form" >"$work/told" 2>&1
  expect "gpx_stats reads $(basename "$previous") and writes $form" "$work/told" "$work/stats"
  previous=$work/$form
done
expect "the track comes back unchanged" "$work/back.gpx" "$work/track.gpx"

"$gpx_edit" "$data/track.gpx" "$work/edited.gpx" 46.5 7.7 "Gipfel 🏔" >"$work/told" 2>&1
"$gpx_stats" "$work/edited.gpx" >>"$work/told"
sed -i -n 1,3p "$work/told"
expect "gpx_edit adds a waypoint" "$work/told" "$expected/edit.txt"
"$gpx_edit" "$data/track.gpx" "$work/refused.gpx" 146.5 7.7 Nowhere >"$work/told" 2>&1
echo "exit $?" >>"$work/told"
expect "gpx_edit refuses a latitude off the globe" "$work/told" "$expected/refuse.txt"

"$large_file" "$data/track.gpx" >"$work/told" 2>&1
expect "large_file walks the points one by one" "$work/told" "$expected/large.txt"

"$large_file" "$data/track.gpx" "$work/thin.gpx" >/dev/null && "$large_file" "$work/thin.gpx" >"$work/told" 2>&1
expect "large_file writes every tenth point" "$work/told" "$expected/thin.txt"
expect "large_file writes the types of the schema" <(grep -m 2 '<trk' "$work/thin.gpx") "$expected/types.txt"

"$order_pay" "$data/order.xml" "$work/order.xml" >"$work/told" 2>&1
"$order_pay" "$work/order.xml" "$work/order2.xml" >>"$work/told" 2>&1
expect "order_pay changes the payment" "$work/told" "$expected/pay.txt"
sed -n '/<payment>/,/<\/order>/p' "$work/order.xml" >"$work/told"
expect "order_pay writes the changed order" "$work/told" "$expected/order.txt"

[ "$failures" = 0 ] && echo "examples: all as expected"
exit "$failures"
