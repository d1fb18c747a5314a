#!/usr/bin/env bash
# Prints the folders from the top layer down, each with the folders that it includes, and fails when
#   - a file includes a folder above its own,
#   - a file includes what is in an internal/ folder of the library, or of the schema compiler, from outside of it,
#   - files include each other in a circle,
#   - expat, PCRE2 or zlib is seen by a header of the library or by more than one of its sources,
#   - RkXmlLib16.h does not reach every public header, or reaches one that is not installed,
#   - docs/architecture.md shows other folders or another order, or names a file of the library that does not exist.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The order, from the top down. RkXmlLib16 itself holds only the headers that gather others.
layers='
tools bench examples fuzz
schema/emit schema/dynamic schema/bind schema/components
RkXmlLib16
RkXmlLib16/binding
RkXmlLib16/wildcards
RkXmlLib16/collections
RkXmlLib16/json
RkXmlLib16/fastinfoset
RkXmlLib16/xml
RkXmlLib16/document
RkXmlLib16/object
RkXmlLib16/context
RkXmlLib16/facets
RkXmlLib16/io
RkXmlLib16/types
RkXmlLib16/base'

trees=()
for tree in RkXmlLib16 schema tools bench examples fuzz; do [ ! -d $tree ] || trees+=("$tree"); done
mapfile -t files < <(find "${trees[@]}" -name '*.h' -o -name '*.cpp' | sort)

awk -v layers="$layers" -v page=docs/architecture.md '
  function complain(text) { print "layers: " text; failed = 1 }
  # A subfolder that is no layer itself belongs to the nearest folder above it that is one.
  function layer(path) {
    do sub(/\/?[^\/]*$/, "", path); while (path != "" && !(path in rank))
    return path
  }
  function internal(path) { return path ~ /\/internal\// }
  function short(path) { sub(/^RkXmlLib16\//, "", path); return path }
  function tree(path) { sub(/\/.*/, "", path); return path }
  function reach(header,   i) {
    if (header in reached) return
    reached[header] = 1
    if (internal(header)) complain("RkXmlLib16.h reaches " header ", which is not installed")
    for (i = 1; i <= includes[header]; i++) if (include[header, i] ~ /^RkXmlLib16\//) reach(include[header, i])
  }

  BEGIN {
    count = split(layers, name)
    for (i = 1; i <= count; i++) rank[name[i]] = i
    while ((getline line <page) > 0) {
      if (match(line, /^\| `[A-Za-z0-9\/]+\/` \|/)) shown = shown " " substr(line, 4, RLENGTH - 7)
      for (; match(line, /`[a-z]+\/[A-Za-z\/]+\.(cpp|h)`/); line = substr(line, RSTART + RLENGTH))
        named["RkXmlLib16/" substr(line, RSTART + 1, RLENGTH - 2)] = 1
    }
  }

  FNR == 1 {
    known[FILENAME] = 1
    own = layer(FILENAME)
    used[own] = 1
    if (own == "RkXmlLib16" && FILENAME !~ /^RkXmlLib16\/[^\/]+\.h$/) complain(FILENAME " stands in no layer")
  }
  /^ *# *include *["<](RkXmlLib16|schema)\// {
    match($0, /["<][^">]*/)
    target = substr($0, RSTART + 1, RLENGTH - 1)
    include[FILENAME, ++includes[FILENAME]] = target
    other = layer(target)
    if (other != own) below[own, other] = 1
    if (other == "" || rank[other] < rank[own]) complain(FILENAME " includes " target ", which stands above it")
    if (internal(target) && tree(target) != tree(FILENAME)) complain(FILENAME " includes " target ", which is internal")
  }
  /^ *# *include *"/ && !/"(RkXmlLib16|schema)\// && tree(FILENAME) ~ /^(RkXmlLib16|schema)$/ {
    complain(FILENAME ": not a path from the root: " $0)
  }
  /^ *# *include *<(expat|pcre2|zlib)\.h>/ && tree(FILENAME) == "RkXmlLib16" {
    if (FILENAME ~ /\.h$/) complain(FILENAME " is a header and includes " $NF)
    if ($NF in seenBy) complain(FILENAME " and " seenBy[$NF] " both include " $NF)
    seenBy[$NF] = FILENAME
  }

  END {
    for (i = 1; i <= count; i++) {
      if (!(name[i] in used)) continue
      drawn = drawn " " name[i]
      printf "%-22s", name[i]
      for (j = i + 1; j <= count; j++) if ((name[i], name[j]) in below) printf " %s", short(name[j])
      print ""
    }
    if (shown != drawn) complain(page " shows\n " shown "\ninstead of\n " drawn)
    for (file in named) if (!(file in known)) complain(page " names " file ", which does not exist")

    reach("RkXmlLib16/RkXmlLib16.h")
    for (file in known)
      if (file ~ /^RkXmlLib16\/.*\.h$/ && !internal(file) && !(file in reached))
        complain("RkXmlLib16.h does not reach " file)

    # Take away, again and again, the files that include none of the rest or that none of the rest includes; what stays
    # goes in circles.
    do {
      gone = 0
      split("", included)
      for (file in known) {
        open = 0
        for (i = 1; i <= includes[file]; i++) if (include[file, i] in known) open = included[include[file, i]] = 1
        if (!open) { delete known[file]; gone = 1 }
      }
      for (file in known) if (!(file in included)) { delete known[file]; gone = 1 }
    } while (gone)
    circle = ""
    for (file in known) circle = circle " " file
    if (circle != "") complain("these include each other:" circle)
    exit failed
  }' "${files[@]}"
