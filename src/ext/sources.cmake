# Extensions beside the core interface (include/ZoImgLibExt.h).
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/ext)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BandConvert.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/ext/BandConvertTest.cpp)
