# Adds to the staged package, before CPack packs it, what Debian wants to find in /usr/share/doc and
# nobody else does.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
set(documents ${root}/share/doc/${CPACK_PACKAGE_NAME})

# An entry for this version alone: what has changed is said in CHANGELOG.md.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${documents}/changelog
     "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
     "  * This version; CHANGELOG.md says what is new.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
execute_process(COMMAND gzip -9 --no-name --force ${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
file(COPY_FILE ${CPACK_KX_DEBIAN_DIR}/copyright ${documents}/copyright)
file(MAKE_DIRECTORY ${root}/share/lintian/overrides)
file(COPY_FILE ${CPACK_KX_DEBIAN_DIR}/lintian-overrides
     ${root}/share/lintian/overrides/${CPACK_PACKAGE_NAME})
