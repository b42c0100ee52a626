set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/convert)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/RGBFilter.cpp
  ${_dir}/PixelConverter.cpp
  ${_dir}/BandWalk.cpp
  ${_dir}/GenericConverters.cpp
  ${_dir}/IdentityRegistry.cpp
  ${_dir}/ChainRegistry.cpp
  ${_dir}/FlatConvert.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/FilterTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/AreaWalkTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/GenericConvertersTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/ConcurrencyTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/ChainedRegistryTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/convert/LibraryUnloadTest.cpp)
# The table of built-in chains, kept in the repository; the registry test
# checks every row of it.
list(APPEND ZO_TEST_DEFINITIONS
  ZO_CHAIN_TABLE_CSV="${CMAKE_CURRENT_SOURCE_DIR}/tests/data/chained-converters.csv")
list(APPEND ZO_BENCH_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/bench/convert_bench.cpp)
