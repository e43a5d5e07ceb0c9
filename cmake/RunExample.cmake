# Runs PROGRAM and compares what it prints with the file EXPECTED, if there is one. A difference leaves EXPECTED.new.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE printed ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}\n${printed}${errors}")
endif()
if(EXISTS ${EXPECTED})
  file(READ ${EXPECTED} wanted)
  if(NOT printed STREQUAL wanted)
    file(WRITE ${EXPECTED}.new "${printed}")
    message(FATAL_ERROR "It printed:\n${printed}\nand not what stands in ${EXPECTED}.\n"
                        "./dev approve takes ${EXPECTED}.new as the new expectation.")
  endif()
endif()
