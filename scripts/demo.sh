#!/usr/bin/env bash
# Builds the library and the tool, then takes a GPX track through them.
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

echo "Building the library and the tool rkxml (a minute or two the first time)"
{ cmake -S . -B $build -G Ninja -DCMAKE_BUILD_TYPE=Release -DRKXML_BUILD_TESTS=OFF -DRKXML_BUILD_EXAMPLES=OFF &&
  cmake --build $build --target rkxml; } >"$log" 2>&1 || { tail -n 60 "$log"; echo "demo: the build failed" >&2; exit 1; }

export PATH=$PWD/$build/tools/rkxml:$PATH
track=$PWD/examples/data/track.gpx
cp "$track" "$work"
cd "$work"

run() {
  printf '\n$ %s\n' "$*"
  "$@"
}

printf '\nA GPX track: a default namespace, extensions in a second one, names in many scripts.\n'
run rkxml show track.gpx

printf '\nIt is read into objects and written again, compact and compressed ...\n'
run rkxml convert --compact track.gpx track.gpx.gz
run rkxml show track.gpx.gz

printf '\n... and back to lines that people can read.\n'
run rkxml convert --indent 2 track.gpx.gz back.gpx
printf '\n$ head -n 12 back.gpx\n'
head -n 12 back.gpx

printf '\nThe document that came back against the source, both written the same way:\n'
run rkxml convert --indent 2 track.gpx source.gpx
printf '\n$ cmp source.gpx back.gpx\n'
if cmp source.gpx back.gpx; then
  echo "The two are the same."
else
  echo "demo: the two differ" >&2
  exit 1
fi
if command -v xmllint >/dev/null; then
  xmllint --noblanks --c14n track.gpx >left
  xmllint --noblanks --c14n back.gpx >right
  cmp left right
  echo "So says canonical XML of the source file itself."
fi
