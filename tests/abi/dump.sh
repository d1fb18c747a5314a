#!/usr/bin/env bash
# dump.sh LIBRARY OUT COMPILER INCLUDE: writes what programs rely on in the binary as text, for comparison.
#
#   OUT/symbols.txt  the exported functions and data of LIBRARY
#   OUT/classes.txt  size, alignment and base of each public class and the slots of its virtual table that its base
#                    does not fill in the same way, as COMPILER (a g++) lays them out from the headers in INCLUDE
# Both leave out the namespaces.
set -euo pipefail
library=$1 out=$2 compiler=$3 include=$4
export LC_ALL=C
mkdir -p "$out"

readable() {
  sed -e 's/std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >/std::wstring/g' \
    -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
    -e 's/std::basic_string_view<wchar_t, std::char_traits<wchar_t> >/std::wstring_view/g' \
    -e 's/\[abi:cxx11\]//g' -e 's/RkXmlLib16\(Data\)\{0,1\}:://g'
}

# Instances of templates come and go with the optimiser, except those that the library makes by request. In a mangled name
# each part has its length before it, and the arguments of a template stand behind an I. Tables and type information,
# whose names begin otherwise, stay. Constants of classes (of type u) come and go in the same way.
nm -D --defined-only "$library" | cut -d ' ' -f 2- |
  awk 'function is_instance(name) {
         sub(/^_ZN[VK]*/, "", name)
         while (match(name, /^[0-9]+/)) name = substr(name, RLENGTH + 1 + substr(name, 1, RLENGTH))
         return name ~ /^I/
       }
       $2 ~ /^_Z(N[VK]*|T[VIS]N)1(0RkXmlLib16|4RkXmlLib16Data)/ && $1 != "W" &&
         !($1 == "u" && $2 !~ /^_ZT/) && !is_instance($2) ||
       $2 ~ /^_ZNK?10RkXmlLib16(16CValue|15CDate)CollectionI/ { print $2 }' |
  c++filt | readable | sort -u >"$out/symbols.txt"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/probe.cpp
(cd "$work" && "$compiler" -std=c++17 -I "$include" -fsyntax-only -fdump-lang-class "$source")
c++filt <"$(echo "$work"/*.class)" | readable | awk '
  # Of each class the table comes first,       then the class with all its bases; what stands below a base tells how:
  #   Vtable for CElementCol                     Class CElementCol
  #   CElementCol::_ZTV...: 37 entries              size=224 align=8
  #   0     (int (*)(...))0                         base size=224 base align=8
  #   8     (int (*)(...))(& _ZTI...)            CElementCol (0x0x7f...) 0
  #   16    (int (*)(...))IEventSink::OnEvent    CXmlCollection (0x0x7f...) 0
  #   24    ...                                        primary-for CElementCol (0x0x7f...)
  /^$/ { table = class = ""; next }
  /^Vtable for / { table = substr($0, 12); next }
  /^Class / { class = substr($0, 7); found = 0; next }
  table != "" && /^[0-9]+ / && $1 >= 16 {
    name = $0
    sub(/^[0-9]+ +(\(int \(\*\)\(\.\.\.\)\))?/, "", name)
    slots[table] = $1 / 8 - 1
    slot[table, slots[table]] = name
  }
  class != "" && /^   size=/ { size[class] = substr($1, 6); align[class] = substr($2, 7) }
  class != "" && /^[^ ].* \(0x0x/ {
    base = $0
    sub(/ \(0x0x.*/, "", base)
    if (++found == 2) first[class] = bases[class] = base
  }
  class != "" && /^      vptr=/ { bases[class] = bases[class] ", " base }
  END {
    for (class in size) {
      if (class !~ /^[CIR]/ || class ~ /^(CSmartPtr|CObjectCollection|ClassInfo)|^__|std::/) continue
      printf "%s\t0\tclass %s%s  (%d bytes, aligned to %d)\n", class, class,
        (class in bases ? " : " bases[class] : ""), size[class], align[class]
      for (i = 1; i <= slots[class]; i++) {
        name = slot[class, i]
        inherited = slot[first[class], i]
        if (name ~ /^(-[0-9]+|\(& typeinfo.*)$/) continue  # heads the part of a second base
        if (name == inherited || (name ~ /::~/ && inherited ~ /::~/)) continue
        printf "%s\t%d\t%4d  %s\n", class, i, i, name == "0" ? "(destructor)" : name == "__cxa_pure_virtual" ? "(pure)" : name
      }
    }
  }' | sort -t $'\t' -k 1,1 -k 2,2n | cut -f 3 >"$out/classes.txt"
