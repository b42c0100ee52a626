# Included by the install tests (cmake -P scripts given BUILD_DIR and
# WORK_DIR): installs the build tree into the fresh prefix WORK_DIR/prefix,
# keeping what the install printed in `install_output`. run(COMMAND...) runs
# a command in WORK_DIR and stops the script with its output if it fails.
function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK_DIR}
                  RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "failed (${result}): ${command}\n${out}\n${err}")
  endif()
  message(STATUS "${out}")
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
set(install_output "${run_output}")
