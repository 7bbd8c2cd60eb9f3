# Writes TEMPLATE to OUTPUT with the revision of the git tree SOURCE_DIR, 40 zeros where there is none.
# Run at every build; an unchanged OUTPUT is not touched, so nothing is compiled again.
# A git tree around SOURCE_DIR, into which it was only unpacked, does not count.
set(KX_REVISION "")
execute_process(COMMAND git -C "${SOURCE_DIR}" rev-parse --show-prefix --verify HEAD
                OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(found MATCHES "^\n*([0-9a-f]+)$")
    set(KX_REVISION "${CMAKE_MATCH_1}")
endif()
string(LENGTH "${KX_REVISION}" length)
if(NOT length EQUAL 40)
    string(REPEAT "0" 40 KX_REVISION)
endif()
configure_file("${TEMPLATE}" "${OUTPUT}" @ONLY)
