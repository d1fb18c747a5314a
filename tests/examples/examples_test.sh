#!/usr/bin/env bash
# Runs the example programs on the sample documents and compares what they say and write.
set -u
gpx_stats=$1 gpx_edit=$2 order_pay=$3 large_file=$4 data=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# expect NAME FILE: what stands in FILE is what comes on standard input.
expect() {
  if ! diff -u - "$2" >"$work/diff"; then
    echo "FAILED: $1"
    cat "$work/diff"
    failures=$((failures + 1))
  fi
}

"$gpx_stats" "$data/track.gpx" "$work/track.gpx" >"$work/stats"
expect "gpx_stats tells the track" "$work/stats" <<'END'
name:    Rund um den Oeschinensee — Frühlingstour
tracks:  1, waypoints: 3, routes: 0
points:  127
length:  4.542 km
climb:   405.7 m
bounds:  46.49791,7.7259 to 46.50871,7.74733
time:    2026-05-16T06:05:00Z to 2026-05-16T09:36:02Z (PT3H31M2S)
END

# The same track through every form: it tells the same, and comes back as the same document.
previous=$work/track.gpx
for form in track.gpx.gz track.json track.json.gz track.finf track.finf.gz back.gpx; do
  "$gpx_stats" "$previous" "$work/$form" >"$work/told" 2>&1
  expect "gpx_stats reads $(basename "$previous") and writes $form" "$work/told" <"$work/stats"
  previous=$work/$form
done
expect "the track comes back unchanged" "$work/back.gpx" <"$work/track.gpx"

"$gpx_edit" "$data/track.gpx" "$work/edited.gpx" 46.5 7.7 "Gipfel 🏔" >"$work/told" 2>&1
"$gpx_stats" "$work/edited.gpx" >>"$work/told"
sed -i -n 1,3p "$work/told"
expect "gpx_edit adds a waypoint" "$work/told" <<'END'
added waypoint 4: Gipfel 🏔
name:    Rund um den Oeschinensee — Frühlingstour
tracks:  1, waypoints: 4, routes: 0
END
"$gpx_edit" "$data/track.gpx" "$work/refused.gpx" 146.5 7.7 Nowhere >"$work/told" 2>&1
echo "exit $?" >>"$work/told"
expect "gpx_edit refuses a latitude off the globe" "$work/told" <<'END'
gpx_edit: Invalid Value for lat [146.5].
exit 1
END

"$large_file" "$data/track.gpx" >"$work/told" 2>&1
expect "large_file walks the points one by one" "$work/told" <<'END'
127 points
highest: 1985.2 m at 46.5029,7.74733
END

"$large_file" "$data/track.gpx" "$work/thin.gpx" >/dev/null && "$large_file" "$work/thin.gpx" >"$work/told" 2>&1
expect "large_file writes every tenth point" "$work/told" <<'END'
13 points
highest: 1978.2 m at 46.503854,7.746329
END
expect "large_file writes the types of the schema" <(grep -m 2 '<trk' "$work/thin.gpx") <<'END'
	<trk>
		<trkseg>
END

"$order_pay" "$data/order.xml" "$work/order.xml" >"$work/told" 2>&1
"$order_pay" "$work/order.xml" "$work/order2.xml" >>"$work/told" 2>&1
expect "order_pay changes the payment" "$work/told" <<'END'
order RK-1600 for Müller & Söhne, 3 lines, paid by card
total 287.17 CHF
refused: The Property [card] is already set. Only one element within this class bay be set at a time
now paid by cash
order RK-1600 for Müller & Söhne, 3 lines, paid by cash
total 287.17 CHF
now paid by cash
END
sed -n '/<payment>/,/<\/order>/p' "$work/order.xml" >"$work/told"
expect "order_pay writes the changed order" "$work/told" <<'END'
	<payment>
		<cash>287.17</cash>
	</payment>
	<due>2024-12-31</due>
	<note>Bitte vor Mittag liefern</note>
	<note>paid in cash</note>
	<AA:trail by="system">
		<AA:entry at="2024-03-01T08:31:00Z">checked</AA:entry>
	</AA:trail>
</order>
END

[ "$failures" = 0 ] && echo "examples: all as expected"
exit "$failures"
