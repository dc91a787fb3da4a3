# Installs the library as a package: headers, libnvshared.so with its SONAME
# links, a CMake package (find_package(nvshared CONFIG)) and a pkg-config
# file.
include(CMakePackageConfigHelpers)

set(NVSHARED_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/nvshared")

install(TARGETS nvshared EXPORT nvsharedTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# Public headers only: internal/ folders, the test helpers and the tests'
# data files stay behind.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/nvshared/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/nvshared"
  FILES_MATCHING PATTERN "*.h"
  PATTERN "internal" EXCLUDE
  PATTERN "testing" EXCLUDE
  PATTERN "testdata" EXCLUDE
  REGEX "platform/os" EXCLUDE
  PATTERN "*_test.h" EXCLUDE)
install(FILES "${PROJECT_BINARY_DIR}/include/nvshared/version.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/nvshared")

install(EXPORT nvsharedTargets
  NAMESPACE nvshared::
  DESTINATION "${NVSHARED_CMAKE_DIR}")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/nvsharedConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/nvsharedConfig.cmake"
  INSTALL_DESTINATION "${NVSHARED_CMAKE_DIR}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/nvsharedConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/nvsharedConfig.cmake"
  "${PROJECT_BINARY_DIR}/nvsharedConfigVersion.cmake"
  DESTINATION "${NVSHARED_CMAKE_DIR}")

# The .pc file finds the prefix relative to itself, so a staged or moved
# install works too.
file(RELATIVE_PATH NVSHARED_PC_TO_PREFIX
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file("${PROJECT_SOURCE_DIR}/cmake/nvshared.pc.in"
  "${PROJECT_BINARY_DIR}/nvshared.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/nvshared.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# The package works for a host: install into a staging prefix, then build
# and run examples/consumer against it, with CMake and with pkg-config.
# Sanitizer builds leave it out, since the consumer is built without them.
if(NVSHARED_BUILD_TESTS AND NOT NVSHARED_SANITIZE)
  add_test(NAME package.consumer
    COMMAND ${CMAKE_COMMAND}
      -DBUILD_DIR=${PROJECT_BINARY_DIR}
      -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
      -DWORK_DIR=${PROJECT_BINARY_DIR}/package-test
      -DGENERATOR=${CMAKE_GENERATOR}
      -DCXX=${CMAKE_CXX_COMPILER}
      -DLIBDIR=${CMAKE_INSTALL_LIBDIR}
      -P "${PROJECT_SOURCE_DIR}/cmake/RunConsumerTest.cmake")
  set_tests_properties(package.consumer PROPERTIES LABELS package)
endif()
