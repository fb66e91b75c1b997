include(CMakePackageConfigHelpers)

# What each installed library form asks of its consumer. The shared library records its own
# dependencies, so its consumers need nothing but the library. The static archive needs the
# third-party libraries its areas link, and nothing of their headers: no public header includes
# one. Those libraries' own dependencies are not named: the linker takes them from their shared
# libraries. For every PkgConfig::VN_* target the library links, this gathers its modules'
# resolved link flags for vnfoundation-static.pc and the lines that look the modules up for the
# static target in VNFoundationConfig.cmake.
get_property(vn_linked GLOBAL PROPERTY VN_AREA_LIBRARIES)
list(REMOVE_DUPLICATES vn_linked)
set(vn_static_dirs "")
set(vn_static_libs "")
set(VN_CONFIG_STATIC_LOOKUPS "")
foreach(item IN LISTS vn_linked)
  if(item MATCHES "^PkgConfig::(VN_[A-Z0-9_]+)$")
    set(prefix ${CMAKE_MATCH_1})
    if(NOT DEFINED VN_PKG_MODULES_${prefix})
      message(FATAL_ERROR "${item} is linked but cmake/VNDependencies.cmake has no "
                          "VN_PKG_MODULES_${prefix} naming its pkg-config modules")
    endif()
    foreach(directory IN LISTS ${prefix}_LIBRARY_DIRS)
      if(NOT directory IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
        list(APPEND vn_static_dirs -L${directory})
      endif()
    endforeach()
    list(TRANSFORM ${prefix}_LIBRARIES PREPEND -l OUTPUT_VARIABLE libraries)
    list(APPEND vn_static_libs ${libraries})
    list(JOIN VN_PKG_MODULES_${prefix} " " modules)
    string(APPEND VN_CONFIG_STATIC_LOOKUPS "  _vn_look_up(${prefix} ${modules})\n")
  endif()
endforeach()
list(REMOVE_DUPLICATES vn_static_dirs)
list(APPEND vn_static_libs -lpthread)
list(JOIN vn_static_dirs " " static_dirs)
list(JOIN vn_static_libs " " static_libs)
string(STRIP "${static_dirs} ${static_libs}" VN_PKGCONFIG_STATIC_LIBS_PRIVATE)
set(VN_STATIC_ARCHIVE_NAME ${CMAKE_STATIC_LIBRARY_PREFIX}vnfoundation${CMAKE_STATIC_LIBRARY_SUFFIX})

# One export set per form, so that the shared library's targets load without the static
# library's dependencies.
install(TARGETS vnfoundation_shared
  EXPORT VNFoundationSharedTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vnfoundation
  EXPORT VNFoundationStaticTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/vn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(VN_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VNFoundation)
foreach(form Shared Static)
  install(EXPORT VNFoundation${form}Targets NAMESPACE VNFoundation::
    DESTINATION ${VN_CMAKE_INSTALL_DIR})
endforeach()
configure_package_config_file(cmake/VNFoundationConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfig.cmake
  INSTALL_DESTINATION ${VN_CMAKE_INSTALL_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfigVersion.cmake
  DESTINATION ${VN_CMAKE_INSTALL_DIR})

foreach(module vnfoundation vnfoundation-static)
  configure_file(cmake/${module}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
