# Desktop integration and the Debian package. `cmake --install` puts the launcher entry and the
# icon where desktops look for them; `cpack -G DEB` in a release build makes corvane_<v>_<arch>.deb.
install(FILES ${CMAKE_CURRENT_LIST_DIR}/corvane.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/corvane.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR "Corvane")
set(CPACK_PACKAGE_CONTACT "Corvane developers <corvane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_INSTALL_DIRECTORY corvane)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_PACKAGE_DESCRIPTION
    "CPU, memory, disk, battery and network throughput in one window and a tray item, with a desktop notification when a value crosses its threshold.")
# The Qt libraries the program links; dpkg-shlibdeps (dpkg-dev) finds the exact versions when
# it is installed.
find_program(CORVANE_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(CORVANE_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
    set(CPACK_DEBIAN_PACKAGE_DEPENDS
        "libqt6widgets6 (>= 6.4), libqt6gui6 (>= 6.4), libqt6core6 (>= 6.4), libqt6charts6 (>= 6.4), libqt6dbus6 (>= 6.4), libxcb1, fonts-dejavu-core")
endif()
# qt6-wayland: a native window on Wayland desktops instead of one through XWayland (or none).
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, qt6-wayland")
include(CPack)
