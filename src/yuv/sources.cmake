# YUV and YCrCb to RGB converters.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/yuv)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/YUVConverters.cpp
  ${_dir}/YUVSimd.cpp
  ${_dir}/YUVRegistry.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVTransformTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVConvertersTest.cpp)
