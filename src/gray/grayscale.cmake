set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/GrayscaleTables.cpp
  ${_dir}/GrayscaleConverters.cpp
  ${_dir}/GraySimd.cpp
  ${_dir}/GrayscaleRegistry.cpp)
# Vector paths per instruction set, chosen at run time (GraySimd.cpp).
zo_add_simd_source(${_dir}/GraySsse3.cpp SSSE3)
zo_add_simd_source(${_dir}/GrayAvx2.cpp AVX2)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/GrayscaleConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/gray_bench.cpp)
