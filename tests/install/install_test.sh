#!/usr/bin/env bash
# install_test.sh BUILD CMAKE COMPILER SANITIZE LIBDIR
set -euo pipefail
build=$1 cmake=$2 compiler=$3 sanitize=$4 libdir=$5
source=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
prefix=$build/installed
work=$build/consumer
flags=()
[ -z "$sanitize" ] || flags=("-fsanitize=$sanitize")
rm -rf "$prefix" "$work"
mkdir -p "$work"

"$cmake" --install "$build" --prefix "$prefix" >/dev/null

echo "== what is installed"
for file in "$libdir/libRkXmlLib16.so" "$libdir/libRkXmlLib16.so.16" include/RkXmlLib16/RkXmlLib16.h bin/rkxml \
            "$libdir/pkgconfig/RkXmlLib16.pc" "$libdir/cmake/RkXmlLib16/RkXmlLib16Config.cmake" share/man/man1/rkxml.1 \
            share/bash-completion/completions/rkxml; do
  [ -e "$prefix/$file" ] || { echo "$file is not installed"; exit 1; }
done
[ -z "$(find "$prefix/include" -path '*/internal/*')" ] || { echo "internal headers are installed"; exit 1; }
if grep -rlE '#include *<(expat|pcre2|zlib)\.h>' "$prefix/include"; then
  echo "these headers need a dependency's header"
  exit 1
fi
"$prefix/bin/rkxml" --version

compile_header() {
  echo "#include <$1>" | "${@:2}" -fsyntax-only -Wall -Wextra -Werror -x c++ - || { echo "fails alone: $1"; exit 1; }
}
export -f compile_header
if [ -z "$sanitize" ]; then  # says nothing new there
  echo "== every header alone and all of them, last first"
  cd "$prefix/include"
  find RkXmlLib16 -name '*.h' | sort >"$work/headers"
  for standard in c++17 c++20; do
    # shellcheck disable=SC2016
    xargs -P "$(nproc)" -I @ bash -c 'compile_header "$@"' _ @ "$compiler" -std=$standard -I . <"$work/headers"
    tac "$work/headers" | sed 's/.*/#include <&>/' | "$compiler" -std=$standard -fsyntax-only -I . -x c++ -
  done
fi

echo "== a consumer with CMake"
"$cmake" -S "$source/consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_CXX_FLAGS="${flags[*]}" >/dev/null
"$cmake" --build "$work/cmake" >/dev/null
"$work/cmake/consumer"

echo "== a consumer with pkg-config"
command -v pkg-config >/dev/null || { echo "no pkg-config here"; exit 77; }
export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
pkg-config --exact-version=16.0.0 RkXmlLib16
# shellcheck disable=SC2046
"$compiler" -std=c++17 "${flags[@]}" "$source/consumer/consumer.cpp" -o "$work/by_pkg_config" \
  $(pkg-config --cflags --libs RkXmlLib16)
LD_LIBRARY_PATH=$prefix/$libdir "$work/by_pkg_config"
