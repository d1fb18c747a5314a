#!/usr/bin/env bash
# Builds the library, the tool and the GPX example, then takes a GPX track through them: from the schema to classes, as any
# XML document, and as objects of the classes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

echo "Looking for a compiler and the libraries, and installing the Debian packages that are missing ..."
scripts/setup.sh

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
project=$PWD
build=$project/build/demo
log=$(mktemp)
work=$(mktemp -d)
trap 'rm -rf "$log" "$work"' EXIT

# Tells how far the build is: on a terminal as it goes, else at every quarter.
show_progress() {
  local line quarter=0
  while IFS= read -r line; do
    echo "$line" >>"$log"
    [[ $line =~ ^\[\ *([0-9]+)%\] ]] || continue
    if [ -t 1 ]; then
      printf '\r  %s %%' "${BASH_REMATCH[1]}"
    elif [ $((BASH_REMATCH[1] / 25)) -gt $quarter ]; then
      quarter=$((BASH_REMATCH[1] / 25))
      echo "  $((quarter * 25)) %"
    fi
  done
  [ ! -t 1 ] || printf '\r'
}

echo "Building the library, the tool and an example in $build (a minute or two the first time) ..."
{ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_TESTS=OFF &&
  NINJA_STATUS='[%p] ' cmake --build "$build" --target rkxml gpx_stats gpx_edit; } 2>&1 | show_progress ||
  { tail -n 60 "$log"; echo "demo: the build failed" >&2; exit 1; }

export PATH=$build/tools/rkxml:$build/examples/gpx:$PATH
cp examples/data/track.gpx examples/gpx/gpx.xsd "$work"
cd "$work"

# run COMMAND: shows it and runs it; a pipe comes as one argument for the shell.
run() {
  printf '\n$ %s\n' "$*"
  if [ $# -gt 1 ]; then "$@"; else eval "$1"; fi
}
say() { printf '\n%s\n' "$*"; }

say 'It begins with a schema: rkxml makes C++ classes of it.'
run rkxml generate --namespace http://www.topografix.com/GPX/1/1=Gpx gpx.xsd
run "grep -A 13 '^class CTrksegType :' gpx.h"

say 'A document of the schema, a GPX track: a default namespace, extensions in a second one, names in many scripts.'
run rkxml show track.gpx

say 'The tool takes it as any XML document. Compact and compressed ...'
run rkxml convert --compact track.gpx track.gpx.gz
run rkxml show track.gpx.gz

say '... and back to lines that people can read. Another tool, xmllint, finds the same document in both (as canonical XML,'
echo 'without the white space between elements):'
run rkxml convert --indent 2 track.gpx.gz back.gpx
run 'xmllint --noblanks --c14n track.gpx >source.c14n && xmllint --noblanks --c14n back.gpx >back.c14n'
run 'cmp source.c14n back.c14n && sha256sum source.c14n back.c14n' || { echo "demo: the two differ" >&2; exit 1; }

say 'The library does more: with the classes of the schema the document is objects with typed members.'
echo 'A program asks them for points, lengths and times, and writes them back, here as JSON.'
run gpx_stats track.gpx track.json
run 'head -n 11 track.json'

say 'Another one adds a waypoint. Members check what the schema demands, so there is none beyond the pole.'
run 'gpx_edit track.gpx edited.gpx 46.5042 7.7215 "Picknick 🧺"'
run 'grep -B 1 -A 1 Picknick edited.gpx'
run gpx_edit track.gpx refused.gpx 96.5 7.7 Nowhere 2>&1 && { echo "demo: not refused" >&2; exit 1; }

say 'The same objects, three forms: the binary one, Fast Infoset, is made from the JSON and tells the same track.'
run gpx_stats track.json track.finf
run 'wc -c track.gpx track.json track.finf | head -n 3'

say 'Read next:'
cat <<END
  README.md                       a first program; how to build, install and link
  docs/getting-started.md         from a schema to a program in five commands
  examples/gpx/gpx_stats.cpp      the program that measured the track
  build/demo/tools/rkxml/rkxml convert --help
END
