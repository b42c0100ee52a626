set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/rgb)
list(APPEND ZO_LIB_SOURCES
  ${_dir}/RGBConverters.cpp
  ${_dir}/RGBSimd.cpp
  ${_dir}/RGBSimdSSSE3.cpp
  ${_dir}/RGBRegistry.cpp)
# Byte shuffles: SSSE3 in their own file, chosen at run time.
if(ZO_X86)
  set_source_files_properties(${_dir}/RGBSimdSSSE3.cpp PROPERTIES COMPILE_OPTIONS -mssse3)
  set_source_files_properties(${_dir}/RGBSimd.cpp ${_dir}/RGBSimdSSSE3.cpp
    PROPERTIES COMPILE_DEFINITIONS ZO_RGB_HAVE_SSSE3=1)
endif()
list(APPEND ZO_BENCH_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/bench/rgb_bench.cpp)
list(APPEND ZO_TEST_SOURCES
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/rgb/RGBConvertersTest.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/tests/rgb/RGBConcurrencyTest.cpp)
