# Installs the build tree into a fresh prefix and imports zoimglib from there
# alone: the package must find the installed library beside it, not the
# build tree's. Run with
#   cmake -DBUILD_DIR=<build> -DWORK_DIR=<scratch> -DPYTHON=<python3> -P InstallTest.cmake
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
string(REGEX MATCH "Python package zoimglib installed in ([^\n]+)" reported "${out}")
set(site "${CMAKE_MATCH_1}")
if(NOT result EQUAL 0 OR NOT EXISTS "${site}/zoimglib/_install.py")
  message(FATAL_ERROR "install failed or reported no package directory (${result}):\n${out}\n${err}")
endif()
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env --unset=ZOIMGLIB_LIBRARY PYTHONPATH=${site} PYTHONDONTWRITEBYTECODE=1
          ${PYTHON} -c "
import zoimglib, numpy
assert zoimglib.library().path.startswith('${prefix}/'), zoimglib.library().path
rgb = zoimglib.convert(numpy.full((4, 6), 1000, numpy.uint16), 'BayerRGB12', 'RGB48')
assert rgb.shape == (4, 6, 3) and (rgb == 1000).all(), rgb
print('zoimglib', zoimglib.version(), 'from', zoimglib.library().path)
"
  WORKING_DIRECTORY ${WORK_DIR} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the installed package failed:\n${out}\n${err}")
endif()
message(STATUS "${out}")
