set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/PackedRegistry.cpp
  ${_dir}/DualTapRegistry.cpp)
