#!/usr/bin/env bash
# Checks that the includes of the library go one way: no file includes a file of a higher floor (docs/architecture.md
# draws the floors), no files include each other around a corner, and expat, PCRE2 and zlib are seen by one source each.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../RkXmlLib16"

# Floor and stems; a header and its source stand on the same floor. What is not listed stands as high as what it
# includes.
floors='
0 core/Export core/Enumerations core/Location core/Exception core/SmartPtr core/ReferenceCount core/SharedName core/internal/TextOrEmpty
0 support/WideText
0 support/internal/ThreadObject support/Format support/HugePages support/CriticalSection support/Ascii support/CodePoints types/Calendar xml/Text
1 types/BinaryData types/Base64 types/DigitVector
1 support/Encoder support/UnicodeConverter support/StringBuffer support/TextStream support/BinaryStream support/File
1 support/Zip
2 types/Whitespace types/BigInteger types/Decimal types/DateTimeSpan types/DateTime types/DateTimeArithmetic
2 types/XsdValue types/Conversions
3 metadata/PrimitiveRestrictions metadata/RegEx metadata/FacetChecks metadata/NamespaceConstraint
4 core/XmlObjectBase types/Variant metadata/FacetDispatch
5 xml/XmlWriter xml/XmlTextWriter json/JsonTextWriter
5 fastinfoset/Vocabulary fastinfoset/Context fastinfoset/BinaryCodec fastinfoset/Writer
6 core/NamespaceAliasMap core/ReadLimits json/JsonContext core/SerializationContext
7 document/internal/Source xml/ElementTree xml/ExpatReader fastinfoset/Reader
7 json/JsonReaderHandler json/JsonReaderDefaultHandler json/JsonTextReader json/JsonToXml
7 xml/DocumentLoad
8 collections/CollectionBase collections/Collection collections/ObjectCollection
8 collections/TypeCollection collections/ValueCollections
8 wildcards/NamespaceRule wildcards/AttributeCol wildcards/Element wildcards/ElementCol
9 core/GeneratedClass metadata/ParentElementInfo metadata/ElementInfo metadata/AttributeInfo
9 metadata/ElementInfoSeq metadata/ElementInfoChoice metadata/ElementInfoAll
10 core/GeneratedClassWrite core/GeneratedClassRead core/ClassFactory core/ChoiceHelpers
10 core/EntryPoints core/EntryPointsJson core/EntryPointsFastInfoset
10 core/Generated RkXmlLib16
'

mapfile -t files < <(find . -name '*.h' -o -name '*.cpp' | sed 's|^\./||' | sort)
awk -v floors="$floors" '
  BEGIN {
    rows = split(floors, row, "\n")
    for (r = 1; r <= rows; r++) {
      words = split(row[r], word, " ")
      for (w = 2; w <= words; w++) { floor[word[w]] = word[1]; listed[word[w]] = 1 }
    }
  }
  function stem(file) { sub(/\.[a-z]+$/, "", file); return file }
  function complain(text) { print "rooms: " text; failed = 1 }
  function height(file) { return floor[stem(file)] + 0 }
  { known[FILENAME] = 1 }
  /^#include "RkXmlLib16\// {
    split($0, part, "\"")
    includes[FILENAME] = includes[FILENAME] " " substr(part[2], 12)
  }
  /^#include <(expat|pcre2|zlib)\.h>/ {
    if ($2 in seenBy) complain(FILENAME " and " seenBy[$2] " both include " $2)
    seenBy[$2] = FILENAME
    if (FILENAME ~ /\.h$/) complain(FILENAME " is a header and includes " $2)
  }
  END {
    do {
      risen = 0
      for (file in known) {
        if (stem(file) in listed) continue
        count = split(includes[file], to, " ")
        for (i = 1; i <= count; i++) if (height(to[i]) > height(file)) { floor[stem(file)] = height(to[i]); risen = 1 }
      }
    } while (risen)
    for (file in known) {
      count = split(includes[file], to, " ")
      for (i = 1; i <= count; i++)
        if (height(to[i]) > height(file))
          complain(file " on floor " height(file) " includes " to[i] " on floor " height(to[i]))
    }
    # Take away, again and again, the files that include none of the rest or that none of the rest includes; what stays
    # goes round.
    do {
      gone = 0
      split("", included)
      for (file in known) {
        count = split(includes[file], to, " ")
        open = 0
        for (i = 1; i <= count; i++) if (to[i] in known) open = included[to[i]] = 1
        if (!open) { delete known[file]; gone = 1 }
      }
      for (file in known) if (!(file in included)) { delete known[file]; gone = 1 }
    } while (gone)
    loop = ""
    for (file in known) loop = loop " " file
    if (loop != "") complain("these include each other:" loop)
    exit failed
  }' "${files[@]}"
