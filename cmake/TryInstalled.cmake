# Installs BUILD into SCRATCH, and there builds and runs examples/installed/shifts.cpp as a stranger would.
#   cmake -DBUILD=… -DSCRATCH=… -DPROJECTS=…/examples/installed -DGENERATOR=… -DCOMPILER=… -P TryInstalled.cmake
function(step)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\n${said}")
  endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
step(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/kestrix)
step(${CMAKE_COMMAND} -G ${GENERATOR} -S ${PROJECTS}/cmake -B ${SCRATCH}/build -DCMAKE_CXX_COMPILER=${COMPILER}
     -DCMAKE_PREFIX_PATH=${SCRATCH}/kestrix)
step(${CMAKE_COMMAND} --build ${SCRATCH}/build --target shifts)
set(PROGRAM ${SCRATCH}/build/shifts)
set(EXPECTED ${PROJECTS}/shifts.out)
include(${CMAKE_CURRENT_LIST_DIR}/RunExample.cmake)
file(REMOVE_RECURSE ${SCRATCH})
