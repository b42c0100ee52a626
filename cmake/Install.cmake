# Installation: the shared library, the public headers (under include/ZoImgLib),
# a CMake package giving the imported target ZoImgLib::ZoImgLib64 and a
# pkg-config file ZoImgLib.pc.
include(CMakePackageConfigHelpers)

set(ZO_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZoImgLib CACHE STRING
    "Where the CMake package files go, relative to the prefix")

install(TARGETS ZoImgLib64 EXPORT ZoImgLibTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZoImgLib
  FILES_MATCHING PATTERN "*.h")

install(EXPORT ZoImgLibTargets
  NAMESPACE ZoImgLib::
  DESTINATION ${ZO_INSTALL_CMAKEDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZoImgLibConfig.cmake.in
  ${PROJECT_BINARY_DIR}/ZoImgLibConfig.cmake
  INSTALL_DESTINATION ${ZO_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZoImgLibConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZoImgLibConfig.cmake ${PROJECT_BINARY_DIR}/ZoImgLibConfigVersion.cmake
  DESTINATION ${ZO_INSTALL_CMAKEDIR})

# The .pc file finds its prefix from its own location, so the installed tree
# may be moved.
file(RELATIVE_PATH ZO_PC_PREFIX_FROM_PCDIR
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" ZO_PC_PREFIX_FROM_PCDIR "${ZO_PC_PREFIX_FROM_PCDIR}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/ZoImgLib.pc.in ${PROJECT_BINARY_DIR}/ZoImgLib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ZoImgLib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
