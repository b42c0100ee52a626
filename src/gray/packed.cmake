# Packed 10/12-bit unpacking and 8-bit dual-tap recombination.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/PackedConverters.cpp
  ${_dir}/PackedRegistry.cpp
  ${_dir}/DualTapConverters.cpp
  ${_dir}/DualTapRegistry.cpp
  ${_dir}/PackedAvx2.cpp)
# SSE2 is the baseline; the AVX2 path has its own file and is chosen at run
# time (elsewhere the file compiles to a path that places nothing).
if(ZO_X86)
  set(_packed_avx2_options -mavx2)
  if(MINGW)
    # GCC for Windows may spill 256-bit registers with aligned moves to
    # stack slots that are only 16-byte aligned: make every move unaligned.
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" ZO_HAVE_UNALIGNED_VECTOR_MOVE)
    if(ZO_HAVE_UNALIGNED_VECTOR_MOVE)
      list(APPEND _packed_avx2_options -Wa,-muse-unaligned-vector-move)
    endif()
  endif()
  set_source_files_properties(${_dir}/PackedAvx2.cpp PROPERTIES COMPILE_OPTIONS "${_packed_avx2_options}")
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/PackedTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/PackedKernelsTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/DualTapTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/packed_bench.cpp)
