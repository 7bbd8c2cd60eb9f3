# The Debian package that CPack makes of an installation (`./dev package`): all of it in one package,
# below /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "The driver-pointgrey developers <driver-pointgrey@lists.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "camera driver plug-in for Point Grey cameras, with a host")
set(CPACK_PACKAGE_DESCRIPTION
"Grabs frames from Point Grey (FLIR) machine-vision cameras on USB 2, USB 3
and GigE, each with a time stamp of the start of its exposure. The package
holds the plug-in for hosts that load it, the host kxhost that writes pictures
and metadata, simulated cameras to try all of it without hardware, and the
headers for authors of hosts. For real cameras it needs the maker's library
libflycapture.so.2, which comes with the FlyCapture2 SDK.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, udev")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The camera library is no package, but dpkg-shlibdeps has to see one.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/flycapture2/sim)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian_documents.cmake)
set(CPACK_VERBATIM_VARIABLES ON)
# CPack hands scripts the variables of its own that begin so.
set(CPACK_KX_DEBIAN_DIR ${PROJECT_SOURCE_DIR}/packaging/debian)
include(CPack)
