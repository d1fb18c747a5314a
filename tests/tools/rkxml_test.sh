#!/usr/bin/env bash
# rkxml_test.sh PROGRAM DATA: runs the command-line tool as a user does.
# shellcheck disable=SC2015
set -uo pipefail
rkxml=$1
data=$2
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../tools/rkxml" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# run STATUS ARGUMENTS...: the exit status is STATUS; out and err hold what was said.
run() {
  local wanted=$1 status=0
  shift
  "$rkxml" "$@" >out 2>err </dev/null || status=$?
  [ "$status" = "$wanted" ] || fail "rkxml $*: exit $status instead of $wanted: $(cat err)"
}

# refuses STATUS TEXT ARGUMENTS...: the same, with one line on standard error that holds TEXT.
refuses() {
  local status=$1 text=$2
  shift 2
  run "$status" "$@"
  [ "$(wc -l <err)" = 1 ] && grep -qF -- "rkxml: " err && grep -qF -- "$text" err ||
    fail "rkxml $*: says [$(cat err)] instead of one line with [$text]"
  [ ! -s out ] || fail "rkxml $*: writes to standard output"
}

same() { cmp -s "$1" "$2" || fail "$1 and $2 differ"; }

# same_document A B: equal under canonical XML, white space between elements aside.
same_document() {
  command -v xmllint >/dev/null || return 0
  xmllint --noblanks --c14n "$1" >left && xmllint --noblanks --c14n "$2" >right && cmp -s left right ||
    fail "$1 and $2 are not the same document"
}

nothing_left() {
  local names
  names=$(find . -maxdepth 1 -name '*.xml.??????')
  [ -z "$names" ] || fail "left behind: $names"
}

## Calls
for call in '--help' '-h' 'convert --help' 'show -h' 'check --help'; do
  # shellcheck disable=SC2086
  run 0 $call
  grep -q '^Usage: rkxml' out || fail "$call shows no usage"
  [ "$(wc -L <out)" -le 80 ] || fail "$call is wider than a terminal"
done
# What the help tells, the manual page tells and the shell completes, for the right command.
compopt() { :; }
# shellcheck source=/dev/null
source "$source/rkxml.bash"
complete_words() {
  COMP_WORDS=(rkxml "$@") COMP_CWORD=$# COMPREPLY=()
  _rkxml
  echo " ${COMPREPLY[*]} "
}
for command in convert show check split; do
  run 0 "$command" --help
  for option in $(grep -oE -- '--[a-z]+(-[a-z]+)*' out | sort -u); do
    grep -qF -- "${option//-/\\-}" "$source/rkxml.1" || fail "the manual page does not tell $option"
    [[ $(complete_words "$command" "$option") == *" $option "* ]] || fail "the shell does not complete $command $option"
  done
  for word in $(sed -n '/--limits/,/expansion/p' out | sed 's/.*limit://' | grep -oE '[a-z]+-?[a-z]+'); do
    [[ $(complete_words "$command" --limits "$word") == *" $word= "* ]] || fail "the shell does not complete $word="
  done
done
run 0 convert --help
mkdir endings
for ending in $(sed -n '/^  xml   /,/^$/p' out | grep -oE '\.[a-z0-9]+'); do
  grep -qE "(^|[& ])\\$ending( |\$)" "$source/rkxml.1" || fail "the manual page does not tell $ending"
  : >"endings/a$ending"
  : >"endings/b$ending.gz"
done
: >endings/c.txt
[ "$(complete_words show endings/ | wc -w)" = "$(find endings -name '[ab].*' | wc -l)" ] ||
  fail "the shell completes $(complete_words show endings/)"
[ "$(find endings -name 'a.*' | wc -l)" -gt 40 ] || fail "no endings are told"
[[ $(complete_words convert --from j) == " json " ]] || fail "the shell does not complete --from j"
[[ $(complete_words co) == " convert " ]] || fail "the shell does not complete co"
run 0 --version
grep -Eqx 'rkxml [0-9]+\.[0-9]+\.[0-9]+' out || fail "--version says $(cat out)"
refuses 2 'see rkxml --help'
refuses 2 'did you mean convert?' convrt a b
refuses 2 'no output file' convert a
refuses 2 'no input file' show
refuses 2 'one file too many' show a b
refuses 2 'did you mean --pretty?' convert --prety a b
refuses 2 'does not go with show' show --compact a
refuses 2 'takes no value' convert --compact=yes a b
refuses 2 'needs a value' convert a b --indent
refuses 2 '0 to 99' convert --indent x a b
refuses 2 'lf, crlf' convert --eol cr a b
refuses 2 'utf-8, utf-16, wide' convert --encoding latin a b
refuses 2 '0, 1, 2' convert --mode 3 a b
# Options that do not apply, and output of a form that nobody tells.
while IFS=: read -r text call; do
  # shellcheck disable=SC2086
  refuses 2 "$text" $call
done <<'END'
Fast Infoset output only:convert --typed a b.xml
Fast Infoset output only:convert --declaration 1 a b.json
pretty XML or JSON output only:convert --indent 2 a b.finf
pretty XML or JSON output only:convert --compact --eol lf a b
XML or JSON output only:convert --encoding utf-8 --to finf a b
goes with JSON only:convert --mode 1 a.xml b.xml
goes with JSON only:show --mode 1 a.xml
JSON input only:convert --root r a.xml b.json
Fast Infoset input only:show --octets a.json
does not go with show:--compact show a
tells no form (give it by --to xml|json|finf):convert a b.fi
tells no form:convert a.json b.txt.gz
END
[ ! -e b.fi ] || fail "an ending that tells no form makes a file"
refuses 2 "unknown option '--from?[31m'" convert $'--from\e[31m' x a b

## Round trips
track=$data/track.gpx
run 0 convert "$track" pretty.gpx
same_document "$track" pretty.gpx
run 0 convert --compact "$track" track.gpx.gz
gzip -t track.gpx.gz || fail "a name in .gz is not compressed"
run 0 convert track.gpx.gz again.gpx
same pretty.gpx again.gpx
run 0 convert pretty.gpx pretty.gpx
same pretty.gpx again.gpx
"$rkxml" convert --compact - - <"$track" >piped.gpx || fail "pipe"
run 0 convert --compact "$track" compact.gpx
same piped.gpx compact.gpx
[ "$(wc -l <compact.gpx)" -le 1 ] || fail "compact output has lines"
run 0 convert --gzip "$track" gzipped.xml
gzip -dc <gzipped.xml >gunzipped.xml
same gunzipped.xml pretty.gpx
printf '<a><b>x</b>\n<b y="1"/></a>' >small.xml
run 0 convert --compact small.xml small.xml.gz
[ "$(gzip -dc small.xml.gz | tail -n 1)" = '<a><b>x</b><b y="1"/></a>' ] ||
  fail "a document too small to shrink is not in a gzip wrapper"
run 0 convert --indent 3 --eol crlf small.xml -
printf '<?xml version="1.0" encoding="UTF-8"?>\r\n<a>\r\n   <b>x</b>\r\n   <b y="1"/>\r\n</a>\r\n' >wanted
same out wanted
run 0 convert --encoding=wide --compact small.xml -
[ "$(wc -c <out)" = $((4 * (22 + 25))) ] || fail "wide output is $(wc -c <out) bytes"
cp small.xml -- --odd
run 0 convert --compact -- --odd odd.xml
[ -s odd.xml ] || fail "a file name that looks like an option"

## JSON
run 0 convert "$track" track.json
! command -v python3 >/dev/null || python3 -m json.tool track.json /dev/null || fail "track.json is no JSON"
run 0 convert track.json back.gpx
same_document "$track" back.gpx
run 0 convert --compact track.json track.json.gz
run 0 convert --from json track.json.gz back.gpx
same_document "$track" back.gpx
run 0 convert --mode 0 --compact --to json small.xml -
printf '{"a": {"b": "x","b": [{"y": "1"}]}}' >wanted
same out wanted
printf '[{"n":1},{"n":2}]' >list.json
refuses 1 'JSON Array has no Name.' show list.json
run 0 show --root r track.json
grep -q 'form        JSON text' out && grep -q 'root        r' out || fail "show --root says $(cat out)"
printf '{"a":\n tru' >cut.json
refuses 1 "Expected value 'true' at line 1, position 4." convert cut.json new.xml
printf '{"a":1,"b":2}' >two.json
refuses 1 'makes no XML document' convert two.json new.xml

## show
run 0 show track.gpx.gz
for text in 'form        XML text' 'wrapper     gzip' 'encoding    UTF-8' 'root        gpx' \
            'namespaces  (default)  http://www.topografix.com/GPX/1/1' '            hike       https://' \
            'depth       6' 'nodes       1,104' ' times)'; do
  grep -qF -- "$text" out || fail "show does not say [$text] but $(cat out)"
done
elements=$(grep -o '<[a-z][A-Za-z:]*' "$track" | wc -l)
grep -qx "elements    $elements" out || fail "show counts $(grep elements out), not $elements"
refuses 1 'Limit exceeded: elements and attributes 5.' show --limits nodes=5 track.gpx.gz
refuses 1 'Limit exceeded: inflated bytes 1000.' convert --limits depth=0,inflated-bytes=1000 track.gpx.gz new.xml
refuses 2 "does not take 'nodes=x'" show --limits nodes=x track.gpx.gz
run 0 show --limits none track.gpx.gz
printf '\377\376<\0a\0/\0>\0' >utf16.xml
run 0 show utf16.xml
grep -q 'UTF-16' out || fail "UTF-16 is not recognised"
printf '<?xml version="1.0" encoding="ISO-8859-1"?><a b="\351"/>' >latin.xml
run 0 show latin.xml
grep -q 'ISO-8859-1' out && grep -q 'attributes  1' out && grep -q 'namespaces  none' out || fail "show latin.xml"

## split: the parts hold everything, and what is around the elements in each
points=$(grep -c '<trkpt' "$track")
mkdir parts
run 0 split --path /gpx/trk/trkseg/trkpt --count 70 "$track" parts/t.gpx.gz
[ "$(find parts -type f | wc -l)" = $(((points + 69) / 70)) ] || fail "split makes $(ls parts)"
sum=0
for part in parts/*; do
  gzip -dc "$part" >part.gpx
  ! command -v xmllint >/dev/null || xmllint --noout part.gpx || fail "$part is no document"
  count=$(grep -c '<trkpt' part.gpx)
  [ "$count" = 70 ] || [ "$part" = "parts/t-000$(((points + 69) / 70)).gpx.gz" ] || fail "$part has $count elements"
  grep -q 'creator="Wanderfreunde' part.gpx || fail "$part lacks what is around"
  sum=$((sum + count))
done
[ $sum = "$points" ] || fail "the parts have $sum elements of $points"
gzip -dc parts/*.gz | grep -oE '<(wpt|ele|name|hike:[a-z]+)[ >][^/]*' | sort >left
grep -oE '<(wpt|ele|name|hike:[a-z]+)[ >][^/]*' pretty.gpx | sort >right
same left right
printf '<a><p:b xmlns:p="urn:p" k="p:v">x</p:b>t<c/><p:b xmlns:p="urn:q"/></a>' >rows.xml
run 0 split --path /a/b --count 1 --compact rows.xml r.xml
[ "$(tail -n 1 r-0001.xml)" = '<a xmlns:p="urn:q"><AA:b xmlns:AA="urn:p" xmlns:p="urn:p" k="p:v">x</AA:b>t<c/></a>' ] ||
  fail "split writes $(cat r-0001.xml)"
run 0 split --path /gpx/trk --count 1 --to json --compact "$track" parts/one
[[ $(cat parts/one-0001) == *'"trk": [{"name": "Tag 1"'* ]] || fail "the elements of a part are no array"
refuses 1 'has no element /a/x' split --path /a/x --count 1 rows.xml none.xml
[ ! -e none-0001.xml ] || fail "split without elements makes a file"
while IFS=: read -r text call; do
  # shellcheck disable=SC2086
  refuses 2 "$text" $call
done <<'END'
--path is missing:split --count 1 a.xml
--count is missing:split --path /a a.xml
a number from 1 on:split --path /a --count 0 a.xml
parts need a name:split --path /a --count 1 -
a path is like:split --path a --count 1 rows.xml
a path is like:split --path /q:a --count 1 rows.xml
END

## Fast Infoset
run 0 convert --compact "$track" plain.gpx
for options in "" --typed "--declaration 9 --gzip"; do
  # shellcheck disable=SC2086
  run 0 convert $options "$track" track.finf
  run 0 convert --compact track.finf again.gpx
  same plain.gpx again.gpx
  run 0 show track.finf
  grep -q 'form        Fast Infoset' out || fail "Fast Infoset is not recognised ($options)"
  run 0 show --octets track.finf
  grep -q 'element gpx in http' out || fail "the octets are not listed ($options)"
  [ "$(tail -n 1 out | sed 's/.*  //')" = "end, end" ] || [ "$(tail -n 1 out | sed 's/.*  //')" = end ] ||
    fail "the list of octets is cut ($options)"
done
refuses 2 'does not take' convert --declaration 10 "$track" track.finf
refuses 1 'is no Fast Infoset' show --octets "$track"
head -c 500 track.finf >cut.finf
refuses 1 '' show --octets cut.finf

## Bad documents and files: one line, exit 1, and the target stays as it was
echo precious >target.xml
bad() {
  refuses 1 "$2" convert "$1" target.xml
  refuses 1 "$2" show "$1"
  [ "$(cat target.xml)" = precious ] || fail "$1 has changed the target"
  refuses 1 "$2" convert "$1" new.xml
  [ ! -e new.xml ] || fail "$1 has made a target"
  nothing_left
}
: >empty.xml
bad empty.xml 'XML Stream is empty!'
printf '<a><b></a>' >malformed.xml
bad malformed.xml 'mismatched tag at line 1'
head -c 900 "$track" >truncated.xml
bad truncated.xml 'at line'
head -c 900 track.gpx.gz >truncated.gpx.gz
bad truncated.gpx.gz 'the gzip data is damaged or cut short'
bad missing.xml 'cannot open missing.xml: No such file'
bad . 'Is a directory'
printf '\357\273\277 {"a":1}' >json.xml
bad json.xml 'JSON text is read with --from json'
printf '<?xml version="1.0" encoding="windows-1252"?><a/>' | gzip >windows.xml.gz
bad windows.xml.gz 'unknown encoding at line 1 (it is windows-1252; readable are'
refuses 1 'cannot write' convert "$track" nowhere/target.xml
if [ -e /dev/full ]; then
  "$rkxml" convert "$track" - >/dev/full 2>err && fail "a full device goes unnoticed"
  grep -q 'No space left' err || fail "a full device is not named"
  refuses 1 'No space left' convert "$track" /dev/full
fi
# A file size limit breaks the write halfway.
(ulimit -f 4 && trap '' XFSZ && "$rkxml" convert "$track" target.xml 2>/dev/null) && fail "a broken write goes unnoticed"
[ "$(cat target.xml)" = precious ] || fail "a broken write has changed the target"
nothing_left

## Terminals: colours and progress there, and nowhere else
if command -v script >/dev/null; then
  on_terminal() { script -qec "$1" /dev/null >said 2>&1 </dev/null; }
  on_terminal "'$rkxml' show missing.xml"
  grep -q $'\e\\[1;31mrkxml:\e\\[0m cannot open' said || fail "no colours on a terminal: $(cat said)"
  NO_COLOR=1 on_terminal "'$rkxml' show missing.xml"
  ! grep -q $'\e' said || fail "colours against the user's will"
  # Silent for a second, so the input comes late.
  { echo '<a>'; printf '<b/>%.0s' {1..9000}; echo '</a>'; } >many.xml
  on_terminal "(sleep 1.1; cat many.xml) | '$rkxml' convert --compact - many2.xml"
  grep -Eq '(reading|converting): \[#* *\] *[0-9]+ %, [0-9,]+ bytes read' said ||
    fail "no progress on a terminal: $(cat -v said)"
  same_document many.xml many2.xml
  on_terminal "'$rkxml' convert small.xml small2.xml"
  [ ! -s said ] || fail "progress of a short conversion"
fi

## The target keeps its mode, and a link stays a link
chmod 640 target.xml
ln -s target.xml link.xml
run 0 convert "$track" link.xml
[ -L link.xml ] && [ "$(stat -c %a target.xml)" = 640 ] || fail "mode or link is lost"
same target.xml pretty.gpx
nothing_left

## Errors with their places, and what is not kept
printf '<r>\n <a></b></r>' >wrong.xml
printf '{"r": {"a": tru}}' >wrong.json
printf '<r><!--x--><?p q?><a>1</a>text<b/>more<!--y--></r>' >mixed.xml
run 0 check mixed.xml "$track"
[ ! -s out ] || fail "check says $(cat out) of good files"
run 1 check mixed.xml wrong.xml wrong.json missing.xml
diff out - <<'END' || fail "check says $(cat out)"
wrong.xml:2:7: /r/a: mismatched tag at line 2
wrong.json:1:16: $.r.a: Expected 'true' at line 0, position 16.
cannot open missing.xml: No such file or directory
END
refuses 2 'does not go with check' check --octets mixed.xml
refuses 2 'no input file' check
run 0 convert mixed.xml mixed.json
[ "$(cat err)" = 'rkxml: not kept: 2 comments, 1 processing instruction, mixed content in 1 element: --quiet to be silent' ] ||
  fail "convert says $(cat err)"
run 0 convert --quiet mixed.xml mixed.json
[ ! -s err ] || fail "convert --quiet says $(cat err)"
run 0 convert "$track" kept.xml
[ ! -s err ] || fail "convert says $(cat err) although everything is kept"

## Documents by a schema
cat >order.xsd <<'END'
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"><xs:element name="order"><xs:complexType><xs:sequence>
 <xs:element name="item" type="xs:int" maxOccurs="3"/></xs:sequence><xs:attribute name="id" type="xs:date" use="required"/>
</xs:complexType><xs:unique name="u"><xs:selector xpath="item"/><xs:field xpath="."/></xs:unique></xs:element></xs:schema>
END
printf '<order id="2024-02-29"><item>1</item></order>' >good.xml
printf '<order id="2023-02-29"\n><item>1</item>\n  <item>x</item><other/></order>' >bad.xml
printf '<order xmlns:i="http://www.w3.org/2001/XMLSchema-instance" i:noNamespaceSchemaLocation="order.xsd"/>' >located.xml
run 0 check --schema order.xsd good.xml
grep -q 'order.xsd:3:18: warning: The identity constraint \[u\] is not checked.$' err || fail "check warns $(cat err)"
run 0 convert --schema order.xsd good.xml good.json --compact --quiet
grep -q '"item": \[{"#text": 1}\]}' good.json || fail "the schema types JSON as $(cat good.json)"
run 0 convert --schema order.xsd good.json good.finf --quiet
run 0 check --quiet --schema order.xsd good.json good.finf
[ ! -s err ] || fail "check --quiet says $(cat err)"
run 1 check --quiet --schema order.xsd good.xml bad.xml
[ "$(wc -l <out)" -ge 2 ] && grep -q '^bad.xml:1:8: /order/@id: ' out && grep -q '^bad.xml:3:3: /order/item' out ||
  fail "check says $(cat out)"
run 1 convert --quiet --schema order.xsd bad.xml bad.json
[ ! -e bad.json ] || fail "a document that is not valid was converted"
run 0 convert --force --quiet --schema order.xsd bad.xml bad.json
run 1 check --quiet --follow-locations located.xml
grep -q 'required Attribute \[id\]' out || fail "locations are not followed: $(cat out)"
# As many locations as a document may name, and none of them there.
{ printf '<order xmlns:i="http://www.w3.org/2001/XMLSchema-instance" i:schemaLocation="'
  seq -f 'u f%.0f' 60000
  printf '">'
  seq -f '<a i:noNamespaceSchemaLocation="g%.0f"/>' 60000
  printf '</order>'
} >located.xml
run 2 check --quiet --follow-locations located.xml
grep -q 'Limit exceeded' err || fail "60,000 locations give $(head -n 1 err)"
printf '<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">\n<xs:element name="r" type="t"/></xs:schema>' >none.xsd
run 2 check --schema none.xsd good.xml
grep -q 'none.xsd:2:.*error: ' err || fail "a bad schema gives $(cat err)"
refuses 2 'goes with' convert --force good.xml out.json
run 0 generate order.xsd
touch -d 2001-01-01 order.h order.cpp
printf '// changed\n' >>order.cpp
run 0 generate order.xsd
[ order.xsd -nt order.h ] && [ order.cpp -nt order.xsd ] || fail "generate does not write what changed alone"

mkdir 'nä 😀'
sed '1s|<xs:element|<xs:include schemaLocation="gone.xsd"/>&|' order.xsd >'nä 😀/mü.xsd'
LC_ALL=C run 0 generate --out made/ 'nä 😀/mü.xsd'
[ "$(cat out)" = $'made/mü.h\nmade/mü.cpp' ] && [ -s made/mü.cpp ] || fail "generate makes $(cat out)"
grep -q 'warning: The schema document \[gone.xsd\] cannot be opened.' err || fail "generate warns $(cat err)"
refuses 2 "no schema has the target namespace 'urn:x'" generate --namespace urn:x=x order.xsd
for name in class std time a::1b a:b a:: errno a__b; do
  refuses 2 'a free C++ namespace' generate --namespace "=$name" order.xsd
done

[ "$failures" = 0 ] || { echo "$failures failures"; exit 1; }
echo "all passed"
