set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/rgb)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/RGBRegistry.cpp)
