# YUV and YCrCb to RGB converters.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/yuv)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/YUVConverters.cpp
  ${_dir}/YUVSimd.cpp
  ${_dir}/YUVSimdAVX2.cpp
  ${_dir}/YUVSimdAVX512.cpp
  ${_dir}/YUVRegistry.cpp)
# SSE2 is the baseline; the AVX2 paths are compiled in their own file and
# chosen at run time.
if(ZO_X86)
  set(_yuv_avx2_options -mavx2)
  if(MINGW)
    # GCC for Windows may spill 256-bit registers to stack slots that are
    # only 16-byte aligned with aligned moves; the assembler can turn every
    # aligned vector move into an unaligned one.
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" ZO_HAVE_UNALIGNED_VECTOR_MOVE)
    if(ZO_HAVE_UNALIGNED_VECTOR_MOVE)
      list(APPEND _yuv_avx2_options -Wa,-muse-unaligned-vector-move)
    endif()
  endif()
  set_source_files_properties(${_dir}/YUVSimd.cpp PROPERTIES
    COMPILE_DEFINITIONS "ZO_YUV_HAVE_AVX2=1;ZO_YUV_HAVE_AVX512=1")
  set_source_files_properties(${_dir}/YUVSimdAVX2.cpp PROPERTIES
    COMPILE_DEFINITIONS ZO_YUV_HAVE_AVX2=1
    COMPILE_OPTIONS "${_yuv_avx2_options}")
  # The AVX-512 path (byte permutes need VBMI), its own file likewise.
  string(REPLACE "-mavx2" "-mavx512bw;-mavx512vbmi" _yuv_avx512_options "${_yuv_avx2_options}")
  set_source_files_properties(${_dir}/YUVSimdAVX512.cpp PROPERTIES
    COMPILE_DEFINITIONS "ZO_YUV_HAVE_AVX2=1;ZO_YUV_HAVE_AVX512=1"
    COMPILE_OPTIONS "${_yuv_avx512_options}")
endif()
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVTransformTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/yuv/YUVConvertersTest.cpp)
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/yuv_bench.cpp)
