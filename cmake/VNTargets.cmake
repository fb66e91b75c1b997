# Each area of the library is an OBJECT library named vn_<area>; vn_add_library() gathers them
# into the installed static and shared libraries.

set(VN_WARNINGS -Wall -Wextra -Werror)
# GCC 12 reports impossible overlaps in inlined std::string concatenation at -O2/-O3
# (GCC bug 105329); the warning is silenced for that compiler only.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND VN_WARNINGS -Wno-restrict)
endif()

# The platform area's internal layer (src/platform/internal/, namespace vn::platform_internal):
# helpers every area shares (UTF-8, number reading, the C locale, hashing). Its sources are
# compiled into the platform area; this target carries its headers to every area and test,
# and is never installed.
add_library(vn_platform_internal INTERFACE)
target_include_directories(vn_platform_internal INTERFACE ${PROJECT_SOURCE_DIR}/src)

# vn_add_area(<area> SOURCES <files...> [DEPENDS <areas...>] [LIBRARIES <third-party targets...>])
function(vn_add_area area)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  set(target vn_${area})
  vn_require_packages(${ARG_LIBRARIES} ${VN_AREA_PACKAGES_${area}})
  add_library(${target} OBJECT ${ARG_SOURCES})
  target_include_directories(${target}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(${target} PRIVATE ${VN_WARNINGS})
  target_compile_features(${target} PUBLIC cxx_std_20)
  foreach(dep IN LISTS ARG_DEPENDS)
    target_link_libraries(${target} PUBLIC vn_${dep})
  endforeach()
  target_link_libraries(${target} PRIVATE vn_platform_internal ${ARG_LIBRARIES} Threads::Threads)
  set_property(GLOBAL APPEND PROPERTY VN_AREA_TARGETS ${target})
  set_property(GLOBAL APPEND PROPERTY VN_AREA_LIBRARIES ${ARG_LIBRARIES})
endfunction()

function(vn_add_library)
  get_property(areas GLOBAL PROPERTY VN_AREA_TARGETS)
  get_property(libraries GLOBAL PROPERTY VN_AREA_LIBRARIES)
  list(REMOVE_DUPLICATES libraries)
  set(objects "")
  foreach(area IN LISTS areas)
    list(APPEND objects $<TARGET_OBJECTS:${area}>)
  endforeach()

  add_library(vnfoundation STATIC ${objects})
  add_library(vnfoundation_shared SHARED ${objects})
  set_target_properties(vnfoundation_shared PROPERTIES
    OUTPUT_NAME vnfoundation
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  foreach(target vnfoundation vnfoundation_shared)
    target_include_directories(${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_link_libraries(${target} PRIVATE ${libraries} Threads::Threads)
  endforeach()
  add_library(VNFoundation::VNFoundation ALIAS vnfoundation)
  add_library(VNFoundation::vnfoundation_shared ALIAS vnfoundation_shared)
endfunction()

# vn_add_test(<name> SOURCES <files...> [LABELS <labels...>] [LIBRARIES <targets...>]):
# one GoogleTest program whose tests are registered with CTest one by one.
function(vn_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  vn_require_packages(${ARG_LIBRARIES})
  add_executable(${name} ${ARG_SOURCES})
  # Exported symbols let call-stack symbols name the functions of the program itself.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  target_compile_options(${name} PRIVATE ${VN_WARNINGS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE vnfoundation vn_testing GTest::gtest GTest::gmock ${ARG_LIBRARIES} Threads::Threads)
  set(properties TIMEOUT 300)
  if(ARG_LABELS)
    list(APPEND properties LABELS "${ARG_LABELS}")
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# vn_add_benchmark(<name> SOURCES <files...>)
function(vn_add_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  vn_require_packages(${ARG_LIBRARIES})
  add_executable(${name} ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE ${VN_WARNINGS})
  # tests/ for the header-only benchmark helpers of the test-support library (testing/).
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE vnfoundation benchmark::benchmark ${ARG_LIBRARIES} Threads::Threads)
endfunction()
