include(CMakePackageConfigHelpers)

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
