# Grayscale depth/expansion converters, then packed unpacking and dual-tap.
include(${CMAKE_CURRENT_SOURCE_DIR}/src/gray/grayscale.cmake)
include(${CMAKE_CURRENT_SOURCE_DIR}/src/gray/packed.cmake)
