# Installation: public headers under include/ombrix, the library, the program and a CMake package, so
# that find_package(ombrix) gives the target ombrix::ombrix. The bridge and the jar add their own
# lines where they are built.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

option(OMBRIX_INSTALL "Generate the install target" ${PROJECT_IS_TOP_LEVEL})
if(NOT OMBRIX_INSTALL)
  return()
endif()

set(OMBRIX_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ombrix)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/api/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ombrix
        FILES_MATCHING PATTERN "ox*.h" PATTERN "ombrix.h")
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(TARGETS ombrix EXPORT ombrixTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET ombrix_program)
  install(TARGETS ombrix_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT ombrixTargets NAMESPACE ombrix:: DESTINATION ${OMBRIX_PACKAGE_DIR})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/ombrixConfig.cmake.in
  ${PROJECT_BINARY_DIR}/ombrixConfig.cmake
  INSTALL_DESTINATION ${OMBRIX_PACKAGE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/ombrixConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ombrixConfig.cmake
              ${PROJECT_BINARY_DIR}/ombrixConfigVersion.cmake
        DESTINATION ${OMBRIX_PACKAGE_DIR})
