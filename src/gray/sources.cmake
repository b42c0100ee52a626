set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
# Grayscale depth and expansion converters.
list(APPEND ZO_LIB_SOURCES
  ${_dir}/GrayscaleTables.cpp
  ${_dir}/GrayscaleRegistry.cpp)
# Packed unpacking and dual-tap recombination.
list(APPEND ZO_LIB_SOURCES
  ${_dir}/PackedRegistry.cpp
  ${_dir}/DualTapRegistry.cpp)
