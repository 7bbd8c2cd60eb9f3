# For authors of hosts: the headers, and how CMake and pkg-config find them.
include(CMakePackageConfigHelpers)

set(KX_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/driver-pointgrey)
set(KX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/driver-pointgrey)
set(KX_PLUGIN_FILE ${CMAKE_INSTALL_LIBDIR}/libdriver-pointgrey.so)
set(KX_SIM_FILE ${KX_SIM_DIR}/libflycapture.so.2)

add_library(kx_host_interface INTERFACE)
set_target_properties(kx_host_interface PROPERTIES EXPORT_NAME host)
target_include_directories(kx_host_interface INTERFACE $<INSTALL_INTERFACE:${KX_INCLUDE_DIR}>)
target_compile_features(kx_host_interface INTERFACE cxx_std_20)
target_link_libraries(kx_host_interface INTERFACE ${CMAKE_DL_LIBS})

install(DIRECTORY include/ DESTINATION ${KX_INCLUDE_DIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS kx_host_interface EXPORT driver-pointgrey-targets)
install(EXPORT driver-pointgrey-targets NAMESPACE driver-pointgrey:: DESTINATION ${KX_CMAKE_DIR})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/driver-pointgrey-config.cmake.in
    ${CMAKE_BINARY_DIR}/driver-pointgrey-config.cmake
    INSTALL_DESTINATION ${KX_CMAKE_DIR} PATH_VARS KX_PLUGIN_FILE KX_SIM_FILE)
# As long as the first number is 0, any second number may change what hosts rely on.
write_basic_package_version_file(${CMAKE_BINARY_DIR}/driver-pointgrey-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/driver-pointgrey-config.cmake
              ${CMAKE_BINARY_DIR}/driver-pointgrey-config-version.cmake
        DESTINATION ${KX_CMAKE_DIR})

# The prefix as seen from the file itself, wherever the tree is moved to.
file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" up ${up})
set(KX_PC_PREFIX "\${pcfiledir}/${up}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/driver-pointgrey.pc.in
               ${CMAKE_BINARY_DIR}/driver-pointgrey.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/driver-pointgrey.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
