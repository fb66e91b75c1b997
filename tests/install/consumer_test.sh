#!/usr/bin/env bash
# Installs the built library into a temporary prefix, checks that its headers include nothing
# but our own and the standard library's, then builds and runs a consumer program against it
# with find_package(VNFoundation), shared and static, and with pkg-config.
#   consumer_test.sh <build dir> <consumer source dir>
# VN_CONSUMER_CXXFLAGS and VN_CONSUMER_LDFLAGS carry the library build's own flags (a sanitizer
# build needs its runtime in the consumer too).
set -euo pipefail
cxxflags="${VN_CONSUMER_CXXFLAGS:-}"
ldflags="${VN_CONSUMER_LDFLAGS:-}"
build_dir="$1"
consumer_dir="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix"

cmake --install "$build_dir" --prefix "$prefix" >/dev/null

# Public headers may include our own headers, the standard library's and the system's, but no
# header of the libraries the library is built on.
foreign=$(grep -rhoE '#include\s*[<"][^>"]+[>"]' "$prefix/include/vn" | sed -E 's/#include\s*//' |
  grep -E 'unicode/|curl/|asio|yajl/|plist/|minizip/|zlib|openssl/|uuid/|geos' || true)
if [ -n "$foreign" ]; then
  echo "installed headers include foreign headers:"; echo "$foreign"; exit 1
fi

for linkage in shared static; do
  use_static=OFF
  [ "$linkage" = static ] && use_static=ON
  cmake -S "$consumer_dir" -B "$work/cmake-$linkage" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DVNFoundation_USE_STATIC_LIBS="$use_static" -DCMAKE_CXX_FLAGS="$cxxflags" \
    -DCMAKE_EXE_LINKER_FLAGS="$ldflags" >/dev/null
  cmake --build "$work/cmake-$linkage" >/dev/null
  LD_LIBRARY_PATH="$prefix/lib" "$work/cmake-$linkage/consumer"
done

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2086 # the flags are lists of words
c++ -std=c++20 $cxxflags "$consumer_dir/main.cpp" -o "$work/pkg-consumer" $ldflags \
  $(pkg-config --cflags --libs vnfoundation) -Wl,-rpath,"$prefix/lib"
"$work/pkg-consumer"
echo "consumer built and ran with find_package (shared and static) and with pkg-config"
