# Cross-build for 64-bit Windows with Debian's MinGW-w64 (package
# g++-mingw-w64-x86-64-posix):
#   cmake -S . -B build-windows -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake
#
# The posix thread model is named explicitly: the win32 one has no std::mutex
# or std::thread in GCC 12 and may own the plain compiler names.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ZO_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ZO_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZO_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${ZO_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${ZO_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# GCC for 64-bit Windows keeps the stack only 16-byte aligned but may spill
# 256-bit registers with aligned moves, which fault at run time in AVX2 code.
# The assembler turns every aligned vector move into an unaligned one (as
# fast on aligned data), for every file, so no AVX2 path is left exposed.
set(CMAKE_C_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")

# Link libgcc, libstdc++ and winpthread into every DLL and program, so that
# they import only KERNEL32 and msvcrt and need no MinGW DLL at run time.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Tests and test discovery run the Windows programs through Wine. Module load
# errors stay visible: a missing DLL is otherwise a silent exit code 53.
find_program(ZO_WINE NAMES wine wine64)
set(ZO_WINEDEBUG "-all,err+module" CACHE STRING "WINEDEBUG for programs run under Wine")
if(ZO_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/env WINEDEBUG=${ZO_WINEDEBUG} ${ZO_WINE})
endif()
