# Desktop integration and the Debian package. `cmake --install` puts the binary, the launcher
# entry, the icon, the AppStream metadata, the manual page and the documentation where desktops,
# software centres and man look for them; `cpack -G DEB` makes corvane_<v>_<arch>.deb.
set(CORVANE_APP_ID io.github.corvane.Corvane)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/${CORVANE_APP_ID}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/${CORVANE_APP_ID}.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/${CORVANE_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Debian wants the manual page and the changelog compressed, reproducibly (no name, no time).
find_program(CORVANE_GZIP gzip REQUIRED)
foreach(source IN ITEMS docs/corvane.1 packaging/changelog)
    get_filename_component(name ${source} NAME)
    add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz
        COMMAND ${CORVANE_GZIP} -9nc ${PROJECT_SOURCE_DIR}/${source} > ${name}.gz
        DEPENDS ${PROJECT_SOURCE_DIR}/${source} VERBATIM)
    list(APPEND corvane_compressed ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
endforeach()
add_custom_target(corvane_docs ALL DEPENDS ${corvane_compressed})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/corvane.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz ${CMAKE_CURRENT_LIST_DIR}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/corvane)

set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR "The Corvane developers")
# No real address yet: lintian's bogus-mail-host stands until the project has one.
set(CPACK_PACKAGE_CONTACT "Corvane developers <corvane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "small system monitor with a tray item and alerts")
set(CPACK_PACKAGE_INSTALL_DIRECTORY corvane)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "")
# Lines of the extended description start with a space in the control file; CPack adds it.
set(CPACK_PACKAGE_DESCRIPTION "Corvane shows CPU, memory and disk usage, the battery level and
the network throughput in one window with a one-minute CPU chart, and puts
an item into the system tray. It posts a desktop notification when CPU,
memory or disk use or the battery level crosses its threshold, at most one
every ten seconds.")
# Qt draws the installed SVG icon on the window only with its SVG icon engine, a plugin no
# library links: Debian 12 ships it in libqt6svg6 (Qt 6.4), Debian 13 in qt6-svg-plugins, which
# needs libqt6svg6 6.6 or later.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-svg-plugins | libqt6svg6 (<< 6.6)")
# The libraries the program links; dpkg-shlibdeps (dpkg-dev) names the exact packages and
# versions of the release it is built on, after the plugin above.
find_program(CORVANE_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(CORVANE_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
    string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS
        ", libqt6widgets6 (>= 6.4), libqt6gui6 (>= 6.4), libqt6core6 (>= 6.4), libqt6charts6 (>= 6.4), libqt6dbus6 (>= 6.4), libxcb1")
endif()
# qt6-wayland: a native window on Wayland desktops instead of one through XWayland (or none).
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, qt6-wayland")
include(CPack)
