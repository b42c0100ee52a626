# YUV and YCrCb to RGB converters.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/yuv)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/YUVConverters.cpp
  ${_dir}/YUVSimd.cpp
  ${_dir}/YUVSimdAVX2.cpp
  ${_dir}/YUVRegistry.cpp)
# SSE2 is the baseline; the AVX2 paths are compiled in their own file and
# chosen at run time.
if(ZO_X86)
  set_source_files_properties(${_dir}/YUVSimd.cpp PROPERTIES COMPILE_DEFINITIONS ZO_YUV_HAVE_AVX2=1)
  set_source_files_properties(${_dir}/YUVSimdAVX2.cpp PROPERTIES
    COMPILE_DEFINITIONS ZO_YUV_HAVE_AVX2=1
    COMPILE_OPTIONS -mavx2)
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVTransformTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/yuv_bench.cpp)
