set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/gray)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/GrayscaleTables.cpp
  ${_dir}/GrayscaleConverters.cpp
  ${_dir}/GrayscaleAVX2.cpp
  ${_dir}/GrayscaleRegistry.cpp)
# SSE2 is the baseline; the AVX2 path has its own file, chosen at run time.
if(ZO_X86)
  set(_gray_avx2_options -mavx2)
  if(MINGW)
    # GCC for Windows may spill 256-bit registers to 16-byte aligned stack
    # slots with aligned moves; have the assembler make every move unaligned.
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" ZO_HAVE_UNALIGNED_VECTOR_MOVE)
    if(ZO_HAVE_UNALIGNED_VECTOR_MOVE)
      list(APPEND _gray_avx2_options -Wa,-muse-unaligned-vector-move)
    endif()
  endif()
  set_source_files_properties(${_dir}/GrayscaleConverters.cpp PROPERTIES COMPILE_DEFINITIONS ZO_GRAY_HAVE_AVX2=1)
  set_source_files_properties(${_dir}/GrayscaleAVX2.cpp PROPERTIES
    COMPILE_DEFINITIONS ZO_GRAY_HAVE_AVX2=1
    COMPILE_OPTIONS "${_gray_avx2_options}")
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/gray/GrayscaleConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/gray_bench.cpp)
