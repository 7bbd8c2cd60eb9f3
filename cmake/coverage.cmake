# kx_count_coverage(TARGET...): with KX_COVERAGE the targets count which of their lines and branches
# run, unoptimised, so that lines stay apart. The threads of the plug-in count at the same time, hence
# the atomic updates.
function(kx_count_coverage)
    if(NOT KX_COVERAGE)
        return()
    endif()
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE -O0 --coverage -fprofile-update=atomic)
        target_link_options(${target} PUBLIC --coverage)
    endforeach()
endfunction()

# What is built so is slower, and its files contain names and libraries of the instrumentation.
if(KX_SANITIZE OR KX_COVERAGE)
    set(KX_INSTRUMENTED ON)
else()
    set(KX_INSTRUMENTED OFF)
endif()
