set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/bayer)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BayerRegistry.cpp)
