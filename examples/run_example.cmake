# Runs SCRIPT with HOST, keeps what it prints in ACTUAL, and fails
# unless that equals EXPECTED.txt or, where there is no such file, holds each line of
# EXPECTED.lines: for programs whose output varies.
execute_process(COMMAND ${HOST} ${SCRIPT} OUTPUT_FILE ${ACTUAL} ERROR_FILE ${ACTUAL}.err
  RESULT_VARIABLE status)
file(READ ${ACTUAL}.err complaints)
file(READ ${ACTUAL} printed)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${SCRIPT} ended with ${status}:\n${printed}${complaints}")
endif()

if(EXISTS ${EXPECTED}.txt)
  execute_process(COMMAND diff -u ${EXPECTED}.txt ${ACTUAL} OUTPUT_VARIABLE difference
    RESULT_VARIABLE differs)
  if(NOT differs EQUAL 0)
    message(FATAL_ERROR "${SCRIPT} printed something else:\n${difference}")
  endif()
  return()
endif()

file(STRINGS ${EXPECTED}.lines lines)
if(NOT lines)
  message(FATAL_ERROR "${EXPECTED}.txt or ${EXPECTED}.lines has to say what ${SCRIPT} prints")
endif()
foreach(line IN LISTS lines)
  string(FIND "${printed}" "${line}" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "${SCRIPT} did not print \"${line}\":\n${printed}")
  endif()
endforeach()
