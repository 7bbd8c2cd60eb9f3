# Manual pages, made from the documents of docs/ (target man_pages): BUILD/man/NAME.SECTION, as
# KX_MAN_FILES lists them, and compressed beside it.

# Takes the first python3 that has the Markdown parser; there may be several in the PATH.
function(kx_reads_markdown result candidate)
    execute_process(COMMAND ${candidate} -c "import markdown_it" RESULT_VARIABLE code
                    OUTPUT_QUIET ERROR_QUIET)
    if(NOT code EQUAL 0)
        set(${result} FALSE PARENT_SCOPE)
    endif()
endfunction()
find_program(KX_MAN_PYTHON python3 VALIDATOR kx_reads_markdown
             DOC "Python with markdown-it, which manual pages are made with")
if(NOT KX_MAN_PYTHON)
    message(FATAL_ERROR "The manual pages need a python3 with markdown-it "
                        "(Debian: python3-markdown-it; KX_MAN_PYTHON names the interpreter)")
endif()

set(KX_MAN_PAGES
    kxhost.1=docs/kxhost.1.md
    kxhost.toml.5=docs/configuration.md
    flycapture2-sim.toml.5=docs/simulated-camera.md)

foreach(entry IN LISTS KX_MAN_PAGES)
    string(REGEX MATCH "^([^=]+)=(.+)$" matched ${entry})
    set(page ${CMAKE_MATCH_1})
    set(document ${CMAKE_MATCH_2})
    set(output ${CMAKE_BINARY_DIR}/man/${page})
    add_custom_command(OUTPUT ${output} ${output}.gz
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
        COMMAND ${KX_MAN_PYTHON} packaging/man_page.py --page ${page}
                --release "${PROJECT_NAME} ${PROJECT_VERSION}" --output ${output} ${KX_MAN_PAGES}
        COMMAND gzip -9 --no-name --keep --force ${output}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        DEPENDS ${document} packaging/man_page.py
        COMMENT "Making the manual page ${page}"
        VERBATIM)
    list(APPEND KX_MAN_FILES ${output})
endforeach()
add_custom_target(man_pages ALL DEPENDS ${KX_MAN_FILES})
