# What `cmake --install` puts where. The simulation gets a folder of its own, so that it never shadows
# the maker's library.
set(KX_SIM_DIR ${CMAKE_INSTALL_LIBDIR}/driver-pointgrey/sim)
set(KX_DATA_DIR ${CMAKE_INSTALL_DATADIR}/driver-pointgrey)

# The plug-in is a program as well.
install(TARGETS driver_pointgrey LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                    WORLD_READ WORLD_EXECUTE)
# The plug-in by its soname, for programs that are linked with it.
install(FILES ${CMAKE_BINARY_DIR}/libdriver-pointgrey.0 DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS kxhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS flycapture2_sim LIBRARY DESTINATION ${KX_SIM_DIR})

install(DIRECTORY examples DESTINATION ${KX_DATA_DIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "kxhost.1.md" EXCLUDE)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
foreach(page IN LISTS KX_MAN_FILES)
    string(REGEX MATCH "[0-9]$" section ${page})
    install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()

# What the system around it takes up by itself: these folders are looked at in /usr and /usr/local.
install(FILES packaging/60-driver-pointgrey.rules DESTINATION lib/udev/rules.d)
install(FILES packaging/kxhost.bash RENAME kxhost
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES packaging/kxhost@.service DESTINATION lib/systemd/system)
# Limits are the administrator's to give: an example, to be copied.
install(FILES packaging/limits.conf DESTINATION ${KX_DATA_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/install_host_package.cmake)
