# kx_find_interpreter(OUT): the program interpreter that the compiler links programs with, asked from
# the compiler itself, so that it is right for the architecture and C library of the build.
function(kx_find_interpreter out)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} "-###" -x c++ /dev/null
                    OUTPUT_VARIABLE commands ERROR_VARIABLE commands)
    if(NOT commands MATCHES "-?-dynamic-linker\"? \"?([^\" \n]+)")
        message(FATAL_ERROR "cannot find out the program interpreter from ${CMAKE_CXX_COMPILER}")
    endif()
    set(${out} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()
