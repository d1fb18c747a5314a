#!/usr/bin/env bash
# names_test.sh PROGRAM COMPILER INCLUDE: names of schemas that mean something else to the compiler. Every macro that
# generated code sees is an enumerator and, where it begins so, an enumeration or a class; so is every class of the
# library that its headers speak of. Every function of the C library is the last word of a target namespace.
set -euo pipefail
rkxml=$1
compile=("$2" -std=gnu++17 -I"$3")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
head='<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"'
echo '#include <RkXmlLib16/Generated.h>' >all.cpp
"${compile[@]}" -E -dM all.cpp | sed -nE 's/^#define ([A-Za-z][A-Za-z0-9_]*) .*/\1/p' | grep -v '^RKXML' | sort -u >macros
"${compile[@]}" -E -P all.cpp | grep -oE '\b[a-z][a-z0-9]+ \(' | tr -d ' (' | sort -u >words
cat "$3"/RkXmlLib16/binding/{Model,ModelObject,SimpleTypeModel}.h | grep -v '^ *//' | grep -oE '\b[CE][A-Z][A-Za-z]+\b' |
  sort -u >classes
cat macros classes | sort -u >capitals
[ "$(wc -l <macros)" -gt 300 ] && [ "$(wc -l <words)" -gt 300 ] || { echo "too few names were found"; exit 1; }

{
  echo "$head targetNamespace='urn:t:names' xmlns:t='urn:t:names'>"
  echo '<xs:element name="r"><xs:complexType><xs:sequence>'
  sed -nE 's|^E([A-Z].*)|<xs:element name="\1" type="t:\1"/>|p' capitals
  sed -nE 's|^C([A-Z].*)|<xs:element name="\1" type="t:\1"/>|p' capitals
  echo '<xs:element name="word" type="t:word"/></xs:sequence></xs:complexType></xs:element>'
  sed -nE "s|^E([A-Z].*)|<xs:simpleType name='\1'><xs:restriction base='xs:string'><xs:enumeration value='a'/></xs:restriction></xs:simpleType>|p" capitals
  sed -nE "s|^C([A-Z].*)|<xs:complexType name='\1'><xs:attribute name='a' type='xs:int'/></xs:complexType>|p" capitals
  echo '<xs:simpleType name="word"><xs:restriction base="xs:string">'
  sed -E 's|.*|<xs:enumeration value="&"/>|' macros
  for name in ModelObject ModelCollection For; do echo "<xs:enumeration value='$name'/>"; done
  echo '</xs:restriction></xs:simpleType>'
  for name in ModelObject ModelCollection For; do echo "<xs:element name='$name' type='xs:int'/>"; done
  echo '</xs:schema>'
} >names.xsd
{
  echo "$head>"
  while read -r word; do
    echo "<xs:import namespace='urn:t:$word' schemaLocation='in-$word.xsd'/>"
    echo "$head targetNamespace='urn:t:$word'><xs:element name='$word' type='xs:int'/></xs:schema>" >"in-$word.xsd"
  done <words
  echo '</xs:schema>'
} >namespaces.xsd
"$rkxml" generate --out . names.xsd >/dev/null
"$rkxml" generate --out . namespaces.xsd >/dev/null
for source in in-*.h; do echo "#include \"$source\""; done >>all.cpp
"${compile[@]}" -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I. -fsyntax-only names.cpp
"${compile[@]}" -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I. -fsyntax-only all.cpp
echo "$(wc -l <macros) macros and $(wc -l <words) words compile"
