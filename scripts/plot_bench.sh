#!/usr/bin/env bash
# plot_bench.sh: reads what the benchmark prints and writes an SVG of the documents of 10 MB, each operation's time as a
# ratio to bare expat. Equal figures give equal bytes.
set -euo pipefail

awk '
  function text(x, y, anchor, words) {
    gsub(/&/, "\\&amp;", words)
    gsub(/</, "\\&lt;", words)
    printf "<text x=\"%d\" y=\"%d\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, words
  }
  function line(x, color) {
    printf "<line x1=\"%d\" x2=\"%d\" y1=\"%d\" y2=\"%d\" stroke=\"%s\"/>\n", x, x, top - 6, bottom, color
  }

  /^[A-Za-z]+ [0-9]+ [KM]B$/ { document = / 10 MB$/ ? $1 : ""; next }
  NF < 5 { document = "" }
  document == "" || $(NF - 3) !~ /^[0-9.]+$/ { next }
  {
    name = $0  # longer than its column, perhaps
    sub(/ +[0-9.]+ +[0-9.]+ +[0-9.]+ +[0-9.]+$/, "", name)
    if (name ~ /^destruction/) next
    if (!(document in speed)) documents[++documentCount] = document
    if (name == "bare expat") { speed[document] = $(NF - 3); next }
    if (!(name in known)) { known[name] = 1; operations[++count] = name }
    ratio[name, document] = $(NF - 2)
    if ($(NF - 2) > largest) largest = $(NF - 2)
  }

  END {
    if (!count) { print "plot_bench: no table of 10 MB" >"/dev/stderr"; exit 1 }
    split("#4477aa #66ccee #ccbb44", colors)
    left = 260; top = 70; bar = 10; gap = 8
    bottom = top + count * (documentCount * bar + gap)
    scale = 480 / largest
    printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"%d\" ", bottom + 24
    print "font-family=\"sans-serif\" font-size=\"12\">"
    print "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>"
    text(8, 18, "start", "Time as a ratio to the XML parser alone (expat = 1), documents of 10 MB; shorter is faster")
    for (d = 1; d <= documentCount; d++) {
      x = left + (d - 1) * 170
      printf "<rect x=\"%d\" y=\"30\" width=\"10\" height=\"10\" fill=\"%s\"/>\n", x, colors[d]
      text(x + 15, 39, "start", sprintf("%s (expat: %.0f MB/s)", documents[d], speed[documents[d]]))
    }
    for (tick = 0; tick <= largest; tick++) {
      line(left + tick * scale, tick == 1 ? "black" : "#cccccc")
      text(left + tick * scale, bottom + 16, "middle", tick)
    }
    for (o = 1; o <= count; o++) {
      y = top + (o - 1) * (documentCount * bar + gap)
      text(left - 8, y + documentCount * bar / 2 + 4, "end", operations[o])
      for (d = 1; d <= documentCount; d++) {
        if (!((operations[o], documents[d]) in ratio)) continue
        value = ratio[operations[o], documents[d]]
        at = y + (d - 1) * bar
        printf "<rect x=\"%d\" y=\"%d\" width=\"%.1f\" height=\"%d\" fill=\"%s\"/>\n", left, at, value * scale, bar - 1, colors[d]
        printf "<text x=\"%.1f\" y=\"%d\" font-size=\"9\">%s</text>\n", left + value * scale + 3, at + 8, value
      }
    }
    print "</svg>"
  }'
