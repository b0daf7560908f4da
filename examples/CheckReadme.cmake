# The program that the README shows is first_program.cpp, which is built and run.
file(READ ${CMAKE_CURRENT_LIST_DIR}/first_program.cpp program)
file(READ ${CMAKE_CURRENT_LIST_DIR}/../README.md readme)
string(FIND "${readme}" "```cpp\n${program}```" position)
if(position EQUAL -1)
    message(FATAL_ERROR "README.md has no code block that is examples/first_program.cpp")
endif()
