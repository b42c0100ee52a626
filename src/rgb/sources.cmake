set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/rgb)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/RGBConverters.cpp
  ${_dir}/RGBRegistry.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/rgb_bench.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/rgb/RGBConvertersTest.cpp)
