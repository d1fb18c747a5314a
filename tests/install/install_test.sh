#!/usr/bin/env bash
# install_test.sh PART BUILD CMAKE COMPILER SANITIZE LIBDIR: builds the project in consumer/ against an installed copy.
# PART is prefix (what `cmake --install` makes) or packages (what `cpack -G DEB` makes, unpacked into an empty root).
set -euo pipefail
part=$1 build=$2 cmake=$3 compiler=$4 sanitize=$5 libdir=$6
source=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$build/install_test/$part
rm -rf "$work"
mkdir -p "$work"

fail() {
  echo "$*"
  exit 1
}

# shelf_says WANTED PROGRAM...: what the program with classes of shelf.xsd says.
shelf_says() {
  local said
  said=$("${@:2}")
  [[ $said == *"$1"* ]] || fail "${*:2} says: $said"
}

# consume PREFIX: builds and runs the consumer with CMake and with pkg-config, with classes of its schema.
consume() {
  local prefix=$1 flags=()
  [ -z "$sanitize" ] || flags=("-fsanitize=$sanitize")
  echo "== a consumer with CMake"
  cp -r "$source/consumer" "$work"
  "$cmake" -S "$work/consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="${flags[*]}" >/dev/null
  "$cmake" --build "$work/cmake" >/dev/null
  "$work/cmake/consumer"
  shelf_says '/shelf/price: Invalid Value for price [250]' "$work/cmake/shelf"
  # The classes follow a document that is only included, and one that comes in later.
  cd "$work/consumer/parts"
  sed 's/100/1000/' 'price list.xsd' >later.xsd
  echo '<schema xmlns="http://www.w3.org/2001/XMLSchema"><include schemaLocation="later.xsd"/></schema>' >'price list.xsd'
  "$cmake" --build "$work/cmake" >/dev/null
  shelf_says 'price": 250}' "$work/cmake/shelf"
  sed -i 's/1000/10/' later.xsd
  "$cmake" --build "$work/cmake" >/dev/null
  shelf_says '/shelf/price: Invalid Value for price [250]' "$work/cmake/shelf"
  cd "$work"

  echo "== a consumer with pkg-config"
  if ! command -v pkg-config >/dev/null; then
    echo "no pkg-config here"
    exit 77
  fi
  export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig PKG_CONFIG_ALLOW_SYSTEM_CFLAGS=1 PKG_CONFIG_ALLOW_SYSTEM_LIBS=1
  pkg-config --exact-version=16.0.0 RkXmlLib16
  # shellcheck disable=SC2046
  "$compiler" -std=c++17 "${flags[@]}" "$source/consumer/consumer.cpp" -o "$work/by_pkg_config" \
    $(pkg-config --cflags --libs RkXmlLib16)
  LD_LIBRARY_PATH=$prefix/$libdir "$work/by_pkg_config"
  "$prefix/bin/rkxml" generate --out "$work/shelf" --namespace urn:example:shelf=my::shelf "$source/consumer/shelf.xsd"
  # shellcheck disable=SC2046
  "$compiler" -std=c++17 "${flags[@]}" -I "$work/shelf" "$source/consumer/shelf.cpp" "$work"/shelf/*.cpp \
    -o "$work/shelf_by_pkg_config" $(pkg-config --cflags --libs RkXmlLib16)
  LD_LIBRARY_PATH=$prefix/$libdir shelf_says 'Invalid Value' "$work/shelf_by_pkg_config"
}

# check_readme PREFIX: the program of the README compiles as a user would compile it and prints what stands below it.
check_readme() {
  echo "== the program of the README"
  local readme=$source/../../README.md flags=()
  [ -z "$sanitize" ] || flags=("-fsanitize=$sanitize")
  awk '/^```/ { inside = /cpp/ && !n++; next } inside' "$readme" >"$work/readme.cpp"
  (cd "$(dirname "$readme")" && eval "$1/bin/$(grep -o -m 1 'rkxml generate .*gpx.xsd$' "$readme") --out '$work'")
  awk '/^```/ { fences++ } fences == 2 && sub(/^    /, "") { print; seen = 1; next } seen { exit }' "$readme" \
    >"$work/readme.wanted"
  # shellcheck disable=SC2046
  "$compiler" -std=c++17 "${flags[@]}" -I "$work" "$work"/{readme,gpx}.cpp -o "$work/readme" $(pkg-config --cflags --libs RkXmlLib16)
  ln -s "$(dirname "$readme")/examples" "$work/examples"
  (cd "$work" && LD_LIBRARY_PATH=$1/$libdir ./readme >readme.out)
  diff "$work/readme.wanted" "$work/readme.out" || fail "the README promises something else"
  [ -s "$work/copy.gpx" ] || fail "the program of the README wrote nothing"
}

# check_headers PREFIX: every installed header stands alone, all stand in any order with g++ and clang++ as C++17 and
# C++20, and none needs one of a dependency.
compile() { "$@" -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I . -x c++ -; }
compile_alone() {
  echo "#include <$1>" | compile "${@:2}" || { echo "fails alone: $1"; exit 1; }
}
export -f compile compile_alone
check_headers() {
  echo "== headers"
  cd "$1/include"
  [ -z "$(find . -path '*/internal/*')" ] || fail "internal headers are installed"
  ! grep -rlE '#include *[<"](expat|expat_external|pcre2|pcre2posix|zlib|zconf)\.h' . ||
    fail "these need a header of a dependency"
  find RkXmlLib16 -name '*.h' | sort >"$work/headers"
  # shellcheck disable=SC2016
  xargs -P "$(nproc)" -I {} bash -c 'compile_alone "$@"' _ {} "$compiler" -std=c++17 <"$work/headers"
  local tried
  for tried in g++ clang++; do
    command -v "$tried" >/dev/null || continue
    sed 's/.*/#include <&>/' "$work/headers" | compile "$tried" -std=c++17 || fail "$tried, C++17"
    tac "$work/headers" | sed 's/.*/#include <&>/' | compile "$tried" -std=c++20 || fail "$tried, C++20, turned round"
  done
}

test_prefix() {
  local prefix=$work/prefix file
  "$cmake" --install "$build" --prefix "$prefix" >/dev/null
  for file in "$libdir/libRkXmlLib16.so" "$libdir/libRkXmlLib16.so.16" include/RkXmlLib16/RkXmlLib16.h bin/rkxml \
              "$libdir/pkgconfig/RkXmlLib16.pc" "$libdir/cmake/RkXmlLib16/RkXmlLib16Config.cmake" \
              share/man/man1/rkxml.1 share/bash-completion/completions/rkxml; do
    [ -e "$prefix/$file" ] || fail "$file is not installed"
  done
  "$prefix/bin/rkxml" --version
  consume "$prefix"
  check_readme "$prefix"
  [ -n "$sanitize" ] || check_headers "$prefix"
}

# depends PACKAGE WORDS...: the package depends on each of these.
depends() {
  local found word
  found=$(dpkg-deb --field "$work"/"$1"_*.deb Depends)
  for word in "${@:2}"; do
    [[ ", $found" == *", $word"* ]] || fail "$1 does not depend on $word but on $found"
  done
}

test_packages() {
  local root=$work/root deb
  if ! command -v dpkg-deb >/dev/null || ! command -v dpkg-shlibdeps >/dev/null; then
    echo "no tools for Debian packages here"
    exit 77
  fi
  (cd "$build" && "$(dirname "$cmake")/cpack" -G DEB -B "$work" >"$work/log" 2>&1) || { cat "$work/log"; exit 1; }
  depends librkxmllib16-16 'libc6 (' 'libexpat1 (' 'libpcre2-8-0 (' 'libstdc++6 (' 'zlib1g ('
  depends librkxmllib16-dev 'librkxmllib16-16 (= 16.0.0'
  depends rkxml 'librkxmllib16-16 (' 'libc6 (' 'libstdc++6 ('
  for deb in "$work"/*.deb; do
    dpkg-deb --extract "$deb" "$root"
  done
  local package synopses
  synopses=$(for deb in "$work"/*.deb; do dpkg-deb --field "$deb" Description | sed -n 1p; done | sort -u)
  [ "$(wc -l <<<"$synopses")" = 3 ] || fail "packages share a description: $synopses"
  for package in README.md docs/getting-started.md examples/gpx/gpx.xsd; do
    [ -s "$root/usr/share/doc/librkxmllib16-dev/$package" ] || fail "librkxmllib16-dev has no $package"
  done
  for package in librkxmllib16-16 librkxmllib16-dev rkxml; do
    [ -s "$root/usr/share/doc/$package/copyright" ] || fail "$package has no copyright file"
    gzip -cd "$root/usr/share/doc/$package/changelog.Debian.gz" | grep '^rkxmllib16 (16.0.0-1)' >/dev/null ||
      fail "$package has no changelog of its version"
    gzip -cd "$root/usr/share/doc/$package/changelog.gz" | cmp -s - "$source/../../CHANGELOG.md" ||
      fail "$package has another CHANGELOG.md"
  done
  LD_LIBRARY_PATH=$root/usr/$libdir "$root/usr/bin/rkxml" --version
  consume "$root/usr"
}

"test_$part"
