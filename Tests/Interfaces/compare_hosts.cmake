# Runs both hosts on the table. Each must succeed and answer every row, and both must print the same bytes.
#   cmake -D C_HOST=.. -D FORTRAN_HOST=.. -D TABLE=.. -P compare_hosts.cmake
foreach(host C_HOST FORTRAN_HOST)
  execute_process(COMMAND ${${host}} ${TABLE} OUTPUT_VARIABLE ${host}_output ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0 OR NOT errors STREQUAL "")
    message(FATAL_ERROR "${host} ended with ${status}: ${errors}")
  endif()
endforeach()
if(NOT C_HOST_output STREQUAL FORTRAN_HOST_output)
  message(FATAL_ERROR "The hosts differ.\n--- C\n${C_HOST_output}\n--- Fortran\n${FORTRAN_HOST_output}")
endif()

file(STRINGS ${TABLE} rows REGEX "^[?!]")
list(LENGTH rows row_count)
string(REGEX MATCHALL "\n[0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F]+ " numbers "${C_HOST_output}")
list(LENGTH numbers number_count)
math(EXPR expected "${row_count} + 2")
if(NOT number_count EQUAL expected)
  message(FATAL_ERROR "${number_count} answers, expected ${expected}:\n${C_HOST_output}")
endif()
# These numbers need no formula: the temperature that was asked for, and the failure value.
foreach(line
    "407F400000000000   5.0000000000000000E+002 [No errors]"
    "C0C15C6666666666  -8.8887999999999993E+003 [Ostrel error: calculation as function of xyz        not available.]"
    "C0C15C6666666666  -8.8887999999999993E+003 [Ostrel err]"
    " ****** Hello from the Ostrel      ******\n1 0 1 14\n"
    "[toluene]")
  string(FIND "${C_HOST_output}" "${line}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "Not printed: ${line}\n${C_HOST_output}")
  endif()
endforeach()
