set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/yuv)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/YUVRegistry.cpp)
