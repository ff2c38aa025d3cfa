# SPDX-License-Identifier: MIT
# A failure that a Fortran program does not ask for must end it with the library's message, and so must an assignment.
#   -D PROGRAM=... -P handles_end.cmake
foreach(case "open;fluid \"tolune\": no such fluid" "evaluate;values: an array of 1 times 1 elements" "copy;a fluid cannot be assigned")
  list(POP_FRONT case word)
  execute_process(COMMAND ${PROGRAM} ${word} RESULT_VARIABLE result ERROR_VARIABLE text OUTPUT_VARIABLE printed)
  string(FIND "${text}" "${case}" place)
  if(result EQUAL 0 OR place EQUAL -1 OR printed MATCHES "goes on")
    message(FATAL_ERROR "${word}: ended with ${result}, printed ${printed}${text}")
  endif()
endforeach()
