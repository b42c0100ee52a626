# Installs the build tree into a fresh prefix, then builds and runs two small
# programs against the installed tree only: C++ through find_package, C
# through pkg-config. Run with
#   cmake -DBUILD_DIR=<build> -DWORK_DIR=<scratch> -DSOURCE_DIR=<this dir>
#         -DC_COMPILER=<cc> -DCXX_COMPILER=<c++> -P InstallTest.cmake
include(${CMAKE_CURRENT_LIST_DIR}/InstallTree.cmake)
file(GLOB_RECURSE pc_files ${prefix}/*/ZoImgLib.pc)
file(GLOB_RECURSE config_files ${prefix}/*/ZoImgLibConfig.cmake)
if(NOT pc_files OR NOT config_files OR NOT EXISTS ${prefix}/include/ZoImgLib/ZoImgLibC.h)
  message(FATAL_ERROR "the install tree lacks ZoImgLib.pc, ZoImgLibConfig.cmake or the headers")
endif()
get_filename_component(pc_dir ${pc_files} DIRECTORY)
get_filename_component(lib_dir ${pc_dir} DIRECTORY)

# C++ through the CMake package.
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/consumer -B ${WORK_DIR}/cxx -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cxx)
run(${WORK_DIR}/cxx/consumer)

# C through pkg-config, run with the installed library on the search path.
find_program(PKG_CONFIG pkg-config REQUIRED)
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} ${PKG_CONFIG} --cflags --libs ZoImgLib)
string(STRIP "${run_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${C_COMPILER} -std=c99 -Wall -Wextra -Werror ${SOURCE_DIR}/consumer.c ${flags} -o ${WORK_DIR}/c-consumer)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${lib_dir} ${WORK_DIR}/c-consumer)
