# `make package`: a Debian package of what `make install` puts in place. Its
# dependencies are worked out from the libraries the binary links
# (dpkg-shlibdeps), so they name exactly the Debian packages Tarvo needs; the
# Qt plugins it loads come with those same packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarvo)
set(CPACK_PACKAGE_VENDOR "Quillmere Software")
set(CPACK_PACKAGE_CONTACT "Tarvo maintainers <maintainers@tarvo.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Reminders, alarms and a calendar for your events")
set(CPACK_PACKAGE_DESCRIPTION
    "Tarvo sits in the system tray, shows what falls due within each event's warning "
    "period, raises alarms at their minute, and keeps recurring events rolling forward.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://tarvo.example.org/)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
