# One place for the compiler flags of each instruction set. SSE2 is the
# baseline of x86-64 builds; every wider path lives in a file of its own,
# compiled for its instruction set alone and chosen at run time.
#
#   zo_add_simd_source(<file> <SSE2|SSSE3|AVX2|AVX512>)
#
# adds the file to ZO_LIB_SOURCES with the flags of its set. On targets other
# than x86-64 the file is left out (the families' tables then hold no path
# of that set).
include_guard(GLOBAL)

set(ZO_SIMD_FLAGS_SSE2 "")
set(ZO_SIMD_FLAGS_SSSE3 -mssse3)
set(ZO_SIMD_FLAGS_AVX2 -mavx2)
set(ZO_SIMD_FLAGS_AVX512 -mavx512f -mavx512bw -mavx512vl -mavx512vbmi)

# GCC for Windows may spill 256- and 512-bit registers to stack slots that
# are only 16-byte aligned with aligned moves: have the assembler make every
# vector move unaligned.
set(ZO_SIMD_WIDE_EXTRA "")
if(MINGW)
  include(CheckCXXCompilerFlag)
  check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" ZO_HAVE_UNALIGNED_VECTOR_MOVE)
  if(ZO_HAVE_UNALIGNED_VECTOR_MOVE)
    set(ZO_SIMD_WIDE_EXTRA -Wa,-muse-unaligned-vector-move)
  endif()
endif()

function(zo_add_simd_source file isa)
  if(NOT DEFINED ZO_SIMD_FLAGS_${isa})
    message(FATAL_ERROR "zo_add_simd_source: unknown instruction set '${isa}' for ${file}")
  endif()
  if(NOT ZO_X86)
    return()
  endif()
  set(options ${ZO_SIMD_FLAGS_${isa}})
  if(isa STREQUAL "AVX2" OR isa STREQUAL "AVX512")
    list(APPEND options ${ZO_SIMD_WIDE_EXTRA})
  endif()
  if(options)
    set_source_files_properties(${file} PROPERTIES COMPILE_OPTIONS "${options}")
  endif()
  set(ZO_LIB_SOURCES ${ZO_LIB_SOURCES} ${file} PARENT_SCOPE)
endfunction()
