# What `cmake --install` puts where. The simulation gets a folder of its own, so that it never shadows
# the maker's library.
set(KX_SIM_DIR ${CMAKE_INSTALL_LIBDIR}/driver-pointgrey/sim)

install(TARGETS driver_pointgrey LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS kxhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET flycapture2_sim)
    install(TARGETS flycapture2_sim LIBRARY DESTINATION ${KX_SIM_DIR})
endif()

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/driver-pointgrey
        FILES_MATCHING PATTERN "*.h")
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/driver-pointgrey)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_BINARY_DIR}/man/kxhost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_BINARY_DIR}/man/kxhost.toml.5 ${CMAKE_BINARY_DIR}/man/flycapture2-sim.toml.5
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
