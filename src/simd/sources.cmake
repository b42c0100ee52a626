# The CPU module every family's choice of paths goes through.
set(_dir ${CMAKE_CURRENT_SOURCE_DIR}/src/simd)
list(APPEND ZO_LIB_SOURCES ${_dir}/Cpu.cpp)
list(APPEND ZO_TEST_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tests/simd/SimdLevelsTest.cpp)
# Table passes of the filtered conversions.
list(APPEND ZO_LIB_SOURCES ${_dir}/Lut.cpp ${_dir}/LutForm.cpp)
zo_add_simd_source(${_dir}/LutSse2.cpp SSE2)
zo_add_simd_source(${_dir}/LutAvx2.cpp AVX2)
zo_add_simd_source(${_dir}/LutAvx512.cpp AVX512)
list(APPEND ZO_TEST_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tests/simd/WhiteBalanceTest.cpp)
list(APPEND ZO_TEST_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tests/simd/FusedWhiteBalanceTest.cpp)
