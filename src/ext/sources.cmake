# Extensions beside the core interface (ZoImgLibExt.h).
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/ext)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/Version.cpp
  ${_dir}/BufferSizes.cpp
  ${_dir}/BandConvert.cpp
  ${_dir}/Pfnc.cpp
  ${_dir}/ClassName.cpp)
# The version string is the CMake project version, never a copy of it.
set_property(SOURCE ${_dir}/Version.cpp APPEND PROPERTY
  COMPILE_DEFINITIONS ZO_IMGLIB_VERSION="${PROJECT_VERSION}")
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/ext/BufferSizesTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/ext/GuardPageSweepTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/ext/BandConvertTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/ext/PfncTest.cpp)
# The PFNC list the table mirrors, and the page that documents the table.
list(APPEND ZO_TEST_DEFINITIONS
  ZO_PFNC_CSV="${CMAKE_CURRENT_SOURCE_DIR}/tests/data/pfnc.csv"
  ZO_PFNC_DOC="${CMAKE_CURRENT_SOURCE_DIR}/docs/pfnc.md")
