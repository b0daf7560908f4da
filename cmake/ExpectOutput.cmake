# cmake -D EXPECTED=<file> -P ExpectOutput.cmake -- <program> <argument>...
# Fails unless the program ends with status 0, prints exactly what the file holds, and reports no errors.
set(command)
set(at_command FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
    if(at_command)
        list(APPEND command "${CMAKE_ARGV${i}}")
    elseif(CMAKE_ARGV${i} STREQUAL "--")
        set(at_command TRUE)
    endif()
endforeach()

execute_process(
    COMMAND ${command}
    RESULT_VARIABLE status
    OUTPUT_VARIABLE output
    ERROR_VARIABLE errors)
file(READ ${EXPECTED} expected)
if(NOT status STREQUAL "0"
   OR NOT errors STREQUAL ""
   OR NOT output STREQUAL expected)
    message(FATAL_ERROR "Status ${status}\n--- expected (${EXPECTED})\n${expected}\n--- output\n${output}\n--- errors\n${errors}")
endif()
