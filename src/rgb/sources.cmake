set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/rgb)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/RGBConverters.cpp
  ${_dir}/RGBSimd.cpp
  ${_dir}/RGBRegistry.cpp)
# Byte shuffles per instruction set, chosen at run time (RGBSimd.cpp).
zo_add_simd_source(${_dir}/RGBSsse3.cpp SSSE3)
zo_add_simd_source(${_dir}/RGBAvx2.cpp AVX2)
zo_add_simd_source(${_dir}/RGBAvx512.cpp AVX512)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/rgb_bench.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/rgb/RGBConvertersTest.cpp)
