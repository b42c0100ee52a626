# YUV and YCrCb to RGB converters.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/yuv)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/YUVConverters.cpp
  ${_dir}/YUVSimd.cpp
  ${_dir}/YUVRegistry.cpp)
# Vector paths per instruction set, chosen at run time (YUVSimd.cpp).
zo_add_simd_source(${_dir}/YUVSse2.cpp SSE2)
zo_add_simd_source(${_dir}/YUVAvx2.cpp AVX2)
zo_add_simd_source(${_dir}/YUVAvx512.cpp AVX512)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVTransformTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVConvertersTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVStreamingTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/yuv_bench.cpp)
