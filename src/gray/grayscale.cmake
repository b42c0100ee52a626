set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/GrayscaleTables.cpp
  ${_dir}/GrayscaleConverters.cpp
  ${_dir}/GrayscaleRegistry.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/GrayscaleConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/gray_bench.cpp)
