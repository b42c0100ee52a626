# Installs the build tree into a fresh prefix and imports zoimglib from there
# alone: the package must find the installed library beside it, not the
# build tree's. Run with
#   cmake -DBUILD_DIR=<build> -DWORK_DIR=<scratch> -DPYTHON=<python3> -P InstallTest.cmake
include(${CMAKE_CURRENT_LIST_DIR}/../install/InstallTree.cmake)
string(REGEX MATCH "Python package zoimglib installed in ([^\n]+)" reported "${install_output}")
set(site "${CMAKE_MATCH_1}")
if(NOT EXISTS "${site}/zoimglib/_install.py")
  message(FATAL_ERROR "the install reported no package directory:\n${install_output}")
endif()
run(${CMAKE_COMMAND} -E env --unset=ZOIMGLIB_LIBRARY PYTHONPATH=${site} PYTHONDONTWRITEBYTECODE=1 ${PYTHON} -c "
import zoimglib, numpy
assert zoimglib.library().path.startswith('${prefix}/'), zoimglib.library().path
rgb = zoimglib.convert(numpy.full((4, 6), 1000, numpy.uint16), 'BayerRGB12', 'RGB48')
assert rgb.shape == (4, 6, 3) and (rgb == 1000).all(), rgb
print('zoimglib', zoimglib.version(), 'from', zoimglib.library().path)
")
