set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/bayer)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BayerLayout.cpp
  ${_dir}/BayerSimd.cpp
  ${_dir}/Bayer8Converters.cpp
  ${_dir}/Bayer16Converters.cpp
  ${_dir}/BayerRegistry.cpp)
# Vector paths per instruction set, chosen at run time (BayerSimd.cpp).
zo_add_simd_source(${_dir}/BayerSse2.cpp SSE2)
zo_add_simd_source(${_dir}/BayerAvx2.cpp AVX2)
zo_add_simd_source(${_dir}/BayerAvx512.cpp AVX512)
zo_add_simd_source(${_dir}/BayerWords48Avx512.cpp AVX512)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/bayer_bench.cpp)
