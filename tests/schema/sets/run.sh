#!/usr/bin/env bash
# run.sh GROUP SCHEMAS WORK CMAKE COMPILER RKXML LIBRARY SCHEMA_LIBRARY: makes, compiles and runs the classes of a group of
# schema sets. 77 where the schemas are absent.
set -euo pipefail
group=$1 schemas=$2 work=$3 cmake=$4 compiler=$5
[ -d "$schemas" ] || { echo "no schemas at hand"; exit 77; }
source=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
mkdir -p "$work"
"$cmake" -S "$source" -B "$work" -DGROUPS="$group" -DRKXML_SCHEMAS="$schemas" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_CXX_FLAGS=-O1 -DRKXML_PROGRAM="$6" -DRKXML_LIBRARY="$7" -DRKXML_SCHEMA_LIBRARY="$8"
"$cmake" --build "$work" --parallel "$(nproc)"
"$work/${group}_sets"
