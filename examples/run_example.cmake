# Runs SCRIPT with HOST, keeps what it prints in ACTUAL, and fails unless that equals EXPECTED.
execute_process(COMMAND ${HOST} ${SCRIPT} OUTPUT_FILE ${ACTUAL} ERROR_FILE ${ACTUAL}.err
  RESULT_VARIABLE status)
file(READ ${ACTUAL}.err complaints)
if(NOT status EQUAL 0)
  file(READ ${ACTUAL} printed)
  message(FATAL_ERROR "${SCRIPT} ended with ${status}:\n${printed}${complaints}")
endif()
if(NOT EXISTS ${EXPECTED})
  message(FATAL_ERROR "There is no ${EXPECTED}; what was printed is in ${ACTUAL}")
endif()
execute_process(COMMAND diff -u ${EXPECTED} ${ACTUAL} OUTPUT_VARIABLE difference
  RESULT_VARIABLE differs)
if(NOT differs EQUAL 0)
  message(FATAL_ERROR "${SCRIPT} printed something else:\n${difference}")
endif()
