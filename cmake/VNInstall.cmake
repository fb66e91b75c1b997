include(CMakePackageConfigHelpers)

# The third-party packages the built library links, for the installed package files: the
# pkg-config modules (vnfoundation.pc's Requires.private) and the lines that make their
# imported targets for a static-library consumer (VNFoundationConfig.cmake).
get_property(vn_linked GLOBAL PROPERTY VN_AREA_LIBRARIES)
list(REMOVE_DUPLICATES vn_linked)
set(VN_PKGCONFIG_REQUIRES_PRIVATE "")
set(VN_CONFIG_FIND_PACKAGES "")
foreach(item IN LISTS vn_linked)
  if(item MATCHES "^PkgConfig::(VN_[A-Z0-9_]+)$")
    set(prefix ${CMAKE_MATCH_1})
    if(NOT DEFINED VN_PKG_MODULES_${prefix})
      message(FATAL_ERROR "${item} is linked but cmake/VNDependencies.cmake has no "
                          "VN_PKG_MODULES_${prefix} naming its pkg-config modules")
    endif()
    list(JOIN VN_PKG_MODULES_${prefix} " " modules)
    string(APPEND VN_PKGCONFIG_REQUIRES_PRIVATE " ${modules}")
    string(APPEND VN_CONFIG_FIND_PACKAGES
      "  pkg_check_modules(${prefix} REQUIRED IMPORTED_TARGET ${modules})\n")
  endif()
endforeach()
string(STRIP "${VN_PKGCONFIG_REQUIRES_PRIVATE}" VN_PKGCONFIG_REQUIRES_PRIVATE)

install(TARGETS vnfoundation vnfoundation_shared
  EXPORT VNFoundationTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/vn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(VN_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VNFoundation)
install(EXPORT VNFoundationTargets NAMESPACE VNFoundation:: DESTINATION ${VN_CMAKE_INSTALL_DIR})
configure_package_config_file(cmake/VNFoundationConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfig.cmake
  INSTALL_DESTINATION ${VN_CMAKE_INSTALL_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/VNFoundationConfigVersion.cmake
  DESTINATION ${VN_CMAKE_INSTALL_DIR})

configure_file(cmake/vnfoundation.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vnfoundation.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vnfoundation.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
