set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/bayer)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BayerLayout.cpp
  ${_dir}/BayerSimd.cpp
  ${_dir}/Bayer8Converters.cpp
  ${_dir}/Bayer16Converters.cpp
  ${_dir}/BayerRegistry.cpp)
# The AVX2 path is compiled for AVX2 alone and chosen at run time.
if(ZO_X86)
  list(APPEND ZO_LIB_SOURCES ${_dir}/BayerAvx2.cpp)
  set_source_files_properties(${_dir}/BayerAvx2.cpp PROPERTIES COMPILE_OPTIONS -mavx2)
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerLayoutTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConvertersTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConcurrencyTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/bayer_bench.cpp)
