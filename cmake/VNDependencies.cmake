# Third-party libraries, found through pkg-config (Debian ships .pc files for all of them).
# They are private to the library: no public header includes them.
#
# A package is required only by what links it: an area (vn_add_area's LIBRARIES), a test or a
# benchmark naming PkgConfig::<prefix> makes vn_require_packages() look it up, so a partial
# build needs only the packages of its areas, and the installed package files list only what
# the built library links.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

# The pkg-config modules behind each imported target, and who links it.
set(VN_PKG_MODULES_VN_ICU icu-uc icu-i18n)  # platform, model, formatting, properties, wkt
set(VN_PKG_MODULES_VN_YAJL yajl)            # values
set(VN_PKG_MODULES_VN_PLIST libplist-2.0)   # coding
set(VN_PKG_MODULES_VN_CURL libcurl)         # network
set(VN_PKG_MODULES_VN_CRYPTO libcrypto)     # network
set(VN_PKG_MODULES_VN_UUID uuid)            # network

# Packages an area needs whatever way it links them, required when the area is added.
set(VN_AREA_PACKAGES_network PkgConfig::VN_CURL PkgConfig::VN_CRYPTO PkgConfig::VN_UUID)

# vn_require_packages(<items...>): makes the imported target of every PkgConfig::VN_* item
# with a known package (other items are left alone), failing the configuration when the
# package is missing.
function(vn_require_packages)
  foreach(item IN LISTS ARGN)
    if(item MATCHES "^PkgConfig::(VN_[A-Z0-9_]+)$")
      set(prefix ${CMAKE_MATCH_1})
      if(DEFINED VN_PKG_MODULES_${prefix})
        pkg_check_modules(${prefix} REQUIRED IMPORTED_TARGET GLOBAL ${VN_PKG_MODULES_${prefix}})
      endif()
    endif()
  endforeach()
endfunction()

# Standalone Asio is header-only and ships neither a CMake config nor a .pc file; only the
# concurrency area and its benchmark compile against it.
find_path(VN_ASIO_INCLUDE_DIR asio.hpp REQUIRED)
add_library(vn_asio INTERFACE)
target_include_directories(vn_asio SYSTEM INTERFACE ${VN_ASIO_INCLUDE_DIR})
target_compile_definitions(vn_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)
