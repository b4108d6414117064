# script/package makes a Debian package of the bundle: /opt/Zantrio, its command and its menu entry.
# What lies outside the bundle is a component of its own, which `cmake --install` leaves out.
install(FILES ${CMAKE_SOURCE_DIR}/packaging/zantrio.desktop
        DESTINATION /usr/share/applications COMPONENT system EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/zantrio.svg
        DESTINATION /usr/share/icons/hicolor/scalable/apps COMPONENT system EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_BINARY_DIR}/packaging/zantrio
        DESTINATION /usr/bin COMPONENT system EXCLUDE_FROM_ALL)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging)
file(CREATE_LINK /opt/Zantrio/bin/zantrio ${CMAKE_BINARY_DIR}/packaging/zantrio SYMBOLIC)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zantrio)
set(CPACK_PACKAGE_CONTACT "Zantrio <support@zantrio.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /opt)
set(CPACK_COMPONENTS_ALL Unspecified system)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${ZANTRIO_BUNDLE_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ca-certificates, libqt6svg6, qt6-qpa-plugins, xdg-utils")
# Contacts are suggested where there is a server that keeps them.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS evolution-data-server)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_STRIP_FILES ON)
include(CPack)
