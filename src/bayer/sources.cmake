set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/bayer)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BayerLayout.cpp
  ${_dir}/Bayer8Converters.cpp
  ${_dir}/Bayer16Converters.cpp
  ${_dir}/BayerRegistry.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerLayoutTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConvertersTest.cpp)
