# Third-party libraries, found through pkg-config (Debian ships .pc files for all of them).
# They are private to the library: no public header includes them.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

pkg_check_modules(VN_ICU REQUIRED IMPORTED_TARGET icu-uc icu-i18n)
pkg_check_modules(VN_YAJL REQUIRED IMPORTED_TARGET yajl)
pkg_check_modules(VN_CURL REQUIRED IMPORTED_TARGET libcurl)
pkg_check_modules(VN_CRYPTO REQUIRED IMPORTED_TARGET libcrypto)
pkg_check_modules(VN_UUID REQUIRED IMPORTED_TARGET uuid)
pkg_check_modules(VN_ZLIB REQUIRED IMPORTED_TARGET zlib)
pkg_check_modules(VN_MINIZIP REQUIRED IMPORTED_TARGET minizip)
pkg_check_modules(VN_PLIST REQUIRED IMPORTED_TARGET libplist-2.0)

# Standalone Asio is header-only and ships neither a CMake config nor a .pc file.
find_path(VN_ASIO_INCLUDE_DIR asio.hpp REQUIRED)
add_library(vn_asio INTERFACE)
target_include_directories(vn_asio SYSTEM INTERFACE ${VN_ASIO_INCLUDE_DIR})
target_compile_definitions(vn_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)

# pkg-config module names of the dependencies, for the installed vnfoundation.pc.
set(VN_PKGCONFIG_REQUIRES_PRIVATE "icu-uc icu-i18n yajl libcurl libcrypto uuid zlib minizip libplist-2.0")
