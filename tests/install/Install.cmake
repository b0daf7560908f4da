# Installs the build tree and moves what came out to PREFIX: what still points at the first place does not work there.
file(REMOVE_RECURSE ${SCRATCH})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/first OUTPUT_QUIET
                COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${SCRATCH}/first ${PREFIX})

file(GLOB_RECURSE internal_headers ${PREFIX}/include/*/internal/*)
if(internal_headers)
    message(FATAL_ERROR "These headers are nobody else's: ${internal_headers}")
endif()
