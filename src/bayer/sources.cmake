set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/bayer)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/BayerLayout.cpp
  ${_dir}/BayerSimd.cpp
  ${_dir}/Bayer8Converters.cpp
  ${_dir}/Bayer16Converters.cpp
  ${_dir}/BayerRegistry.cpp)
# The AVX2 path is compiled for AVX2 alone and chosen at run time.
if(ZO_X86)
  set(_bayer_avx2_options -mavx2)
  if(MINGW)
    # GCC for Windows may spill 256-bit registers to 16-byte aligned stack
    # slots with aligned moves: have the assembler make them unaligned.
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" ZO_HAVE_UNALIGNED_VECTOR_MOVE)
    if(ZO_HAVE_UNALIGNED_VECTOR_MOVE)
      list(APPEND _bayer_avx2_options -Wa,-muse-unaligned-vector-move)
    endif()
  endif()
  list(APPEND ZO_LIB_SOURCES ${_dir}/BayerAvx2.cpp)
  set_source_files_properties(${_dir}/BayerAvx2.cpp PROPERTIES COMPILE_OPTIONS "${_bayer_avx2_options}")
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConvertersTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/bayer/BayerConcurrencyTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/bayer_bench.cpp)
