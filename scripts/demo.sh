#!/usr/bin/env bash
# Builds the library, the tool and the GPX example, then takes a GPX track through them: first as any XML document, then
# as objects of generated classes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
build=build/demo
log=$(mktemp)
work=$(mktemp -d)
trap 'rm -rf "$log" "$work"' EXIT

echo "Building the library, the tool and an example (a minute or two the first time)"
{ cmake -S . -B $build -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_TESTS=OFF &&
  cmake --build $build --target rkxml gpx_stats gpx_edit; } >"$log" 2>&1 || { tail -n 60 "$log"; echo "demo: the build failed" >&2; exit 1; }

export PATH=$PWD/$build/tools/rkxml:$PWD/$build/examples/gpx:$PATH
track=$PWD/examples/data/track.gpx
cp "$track" "$work"
cd "$work"

# run COMMAND: shows it and runs it; a pipe comes as one argument for the shell.
run() {
  printf '\n$ %s\n' "$*"
  if [ $# -gt 1 ]; then "$@"; else eval "$1"; fi
}

# run COMMAND: shows it and runs it; a pipe comes as one argument for the shell.
run() {
  printf '\n$ %s\n' "$*"
  if [ $# -gt 1 ]; then "$@"; else eval "$1"; fi
}
say() { printf '\n%s\n' "$*"; }

say 'A GPX track: a default namespace, extensions in a second one, names in many scripts.'
run rkxml show track.gpx

say 'The tool takes it as any XML document. Compact and compressed ...'
run rkxml convert --compact track.gpx track.gpx.gz
run rkxml show track.gpx.gz

say '... and back to lines that people can read. It is the same document as the source:'
run rkxml convert --indent 2 track.gpx.gz back.gpx
run rkxml convert --indent 2 track.gpx source.gpx
run cmp source.gpx back.gpx || { echo "demo: the two differ" >&2; exit 1; }
if command -v xmllint >/dev/null; then
  xmllint --noblanks --c14n track.gpx >left
  xmllint --noblanks --c14n back.gpx >right
  cmp left right
fi
echo "The two are the same."

say 'The library does more: with generated classes (examples/gpx/Gpx.h, from gpx.xsd) the document is objects with'
echo 'typed members. A program asks them for points, lengths and times, and writes them back, here as JSON.'
run gpx_stats track.gpx track.json
run 'head -n 11 track.json'

say 'Another one adds a waypoint. Members check what the schema demands, so there is none beyond the pole.'
run 'gpx_edit track.gpx edited.gpx 46.5042 7.7215 "Picknick 🧺"'
run 'grep -B 1 -A 1 Picknick edited.gpx'
run gpx_edit track.gpx refused.gpx 96.5 7.7 Nowhere 2>&1 && { echo "demo: not refused" >&2; exit 1; }

say 'The same objects, three forms: the binary one, Fast Infoset, is made from the JSON and tells the same track.'
run gpx_stats track.json track.finf
run 'wc -c track.gpx track.json track.finf | head -n 3'
