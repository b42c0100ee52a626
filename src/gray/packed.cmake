# Packed 10/12-bit unpacking and 8-bit dual-tap recombination.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/PackedConverters.cpp
  ${_dir}/PackedRegistry.cpp
  ${_dir}/DualTapConverters.cpp
  ${_dir}/DualTapRegistry.cpp
  ${_dir}/PackedSimd.cpp)
# Vector paths per instruction set, chosen at run time (PackedSimd.cpp).
zo_add_simd_source(${_dir}/PackedSse2.cpp SSE2)
zo_add_simd_source(${_dir}/PackedAvx2.cpp AVX2)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/PackedTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/DualTapTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/packed_bench.cpp)
