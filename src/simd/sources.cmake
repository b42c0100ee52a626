# The CPU module every family's choice of paths goes through.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/simd)
list(APPEND ZO_LIB_SOURCES ${_dir}/Cpu.cpp)
