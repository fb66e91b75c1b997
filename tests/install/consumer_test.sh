#!/usr/bin/env bash
# Installs the built library into a temporary prefix and builds and runs a consumer program
# against it four ways: CMake shared, CMake static, pkg-config shared (with the rpath the README
# shows) and pkg-config --static. Checks on the way that
# - the installed headers include nothing but our own, the standard library's and the system's;
# - shared consumers need nothing but the library: pkg-config and find_package work with no
#   other package's pkg-config file in sight;
# - no include folder but the prefix's reaches a consumer;
# - each imported target is the library form its name says, with and without
#   VNFoundation_USE_STATIC_LIBS (a shared consumer needs libvnfoundation.so, a static one not);
# - asking for the static library without its dependencies fails at configure time, naming them.
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
# A pkg-config search path with no package in it: a machine without any -dev package.
no_packages="$work/no-packages"
mkdir -p "$no_packages"

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

cmake --install "$build_dir" --prefix "$prefix" >/dev/null

# Public headers may include our own headers, the standard library's and the system's, but no
# header of the libraries the library is built on.
foreign=$(grep -rhoE '#include\s*[<"][^>"]+[>"]' "$prefix/include/vn" | sed -E 's/#include\s*//' |
  grep -E 'unicode/|curl/|asio|yajl/|plist/|minizip/|zlib|openssl/|uuid/|geos' || true)
[ -z "$foreign" ] || fail "installed headers include foreign headers: $foreign"

# only_prefix_includes <what> <flags...>: every include folder among the flags is the prefix's.
only_prefix_includes() {
  local what="$1" flag folder
  shift
  while [ $# -gt 0 ]; do
    flag="$1"
    shift
    case "$flag" in
      -I | -isystem) folder="${1:-}" && shift ;;
      -I* | -isystem*) folder="${flag#-I}" && folder="${folder#-isystem}" ;;
      *) continue ;;
    esac
    case "$folder" in
      "$prefix"/*) ;;
      *) fail "$what leaks the include folder $folder" ;;
    esac
  done
}

# runs_as <shared|static> <program>: runs the program (which checks itself) without any library
# search path of ours, and checks that it needs libvnfoundation.so exactly when shared.
runs_as() {
  local form="$1" program="$2"
  env -u LD_LIBRARY_PATH "$program" >/dev/null || fail "$program did not run"
  if readelf -d "$program" | grep -q 'NEEDED.*libvnfoundation'; then
    [ "$form" = shared ] || fail "$program should hold the static library but needs the shared one"
  else
    [ "$form" = static ] || fail "$program should need the shared library"
  fi
}

# cmake_consumer <name> <USE_STATIC_LIBS> <pkg-config path or ""> [targets...]: configures and
# builds the consumer project in a fresh folder.
cmake_consumer() {
  local name="$1" use_static="$2" pc_libdir="$3"
  shift 3
  local targets=()
  for target in "$@"; do targets+=(--target "$target"); done
  env ${pc_libdir:+PKG_CONFIG_LIBDIR="$pc_libdir"} cmake -S "$consumer_dir" -B "$work/$name" \
    -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DVNFoundation_USE_STATIC_LIBS="$use_static" \
    -DCMAKE_CXX_FLAGS="$cxxflags" -DCMAKE_EXE_LINKER_FLAGS="$ldflags" \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$work/$name.log" 2>&1 ||
    { cat "$work/$name.log"; fail "configuring $name"; }
  cmake --build "$work/$name" "${targets[@]}" >>"$work/$name.log" 2>&1 ||
    { cat "$work/$name.log"; fail "building $name"; }
  # shellcheck disable=SC2046 # the compile commands are lists of words
  only_prefix_includes "find_package ($name)" $(grep -o '"command": "[^"]*"' \
    "$work/$name/compile_commands.json")
}

# CMake, shared, on a machine without the static library's dependencies.
cmake_consumer cmake-shared OFF "$no_packages"
runs_as shared "$work/cmake-shared/consumer"
runs_as shared "$work/cmake-shared/consumer_shared"
[ ! -e "$work/cmake-shared/consumer_static" ] ||
  fail "the static target was defined although its dependencies are missing"

# CMake, static: VNFoundation::vnfoundation is the static library without the switch too, and
# VNFoundation::vnfoundation_shared the shared one with it.
cmake_consumer cmake-static OFF "" consumer_static
runs_as static "$work/cmake-static/consumer_static"
cmake_consumer cmake-switch ON ""
runs_as static "$work/cmake-switch/consumer"
runs_as static "$work/cmake-switch/consumer_static"
runs_as shared "$work/cmake-switch/consumer_shared"

# Asking for the static library where its dependencies are missing fails, naming them.
if PKG_CONFIG_LIBDIR="$no_packages" cmake -S "$consumer_dir" -B "$work/cmake-missing" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" -DVNFoundation_USE_STATIC_LIBS=ON >"$work/missing.log" 2>&1; then
  fail "the static switch was accepted without the static library's dependencies"
fi
tr -s ' \n' ' ' <"$work/missing.log" |
  grep -q "the static library needs what pkg-config could not find: icu-uc, icu-i18n" ||
  { cat "$work/missing.log"; fail "the missing dependencies are not named"; }

# pkg-config: the shared module needs no other module; the static one names the archive by path.
export PKG_CONFIG_LIBDIR="$prefix/lib/pkgconfig"
shared_flags=$(pkg-config --cflags --libs vnfoundation) || fail "pkg-config vnfoundation"
# shellcheck disable=SC2086 # the flags are lists of words
only_prefix_includes "pkg-config vnfoundation" $shared_flags
static_cflags=$(pkg-config --static --cflags vnfoundation-static)
# shellcheck disable=SC2086
only_prefix_includes "pkg-config --static vnfoundation-static" $static_cflags
unset PKG_CONFIG_LIBDIR
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"

# shellcheck disable=SC2086
c++ -std=c++20 $cxxflags $(pkg-config --cflags vnfoundation) -c "$consumer_dir/main.cpp" \
  -o "$work/main.o"
# shellcheck disable=SC2086
c++ $cxxflags "$work/main.o" -o "$work/pkg-shared" $ldflags $(pkg-config --libs vnfoundation) \
  -Wl,-rpath,"$(pkg-config --variable=libdir vnfoundation)"
runs_as shared "$work/pkg-shared"
# shellcheck disable=SC2086
c++ $cxxflags "$work/main.o" -o "$work/pkg-static" $ldflags \
  $(pkg-config --static --libs vnfoundation-static)
runs_as static "$work/pkg-static"

echo "consumer built and ran: CMake shared and static (with and without the switch), pkg-config shared and --static"
