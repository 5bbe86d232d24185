# The Debian package that tools/package makes of what the component "program" installs.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quellon)
set(CPACK_PACKAGE_VENDOR "the Quellon authors")
set(CPACK_PACKAGE_CONTACT "the Quellon authors <support@quellon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "keeps applications from burning a metered connection")
set(CPACK_PACKAGE_DESCRIPTION
"On a phone's hotspot, sync clients, updaters and background downloads quietly
use up the data plan. Quellon watches while the connection is metered, shows
which application moves how many bytes, and tells you, asks you or freezes
what crosses a limit, as its rule says. What is frozen goes on where it was.
.
There is an item in the tray with a panel, a view for terminals, and plain
lines for logs. It needs no administrator's rights.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_COMPONENTS_ALL program)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/data/debian/prerm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What is linked is found by dpkg-shlibdeps; these two are opened by name at run time.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libcurl4 | libcurl4t64, tzdata")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates, dbus-user-session | dbus-session-bus, fonts-noto-color-emoji")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "notification-daemon, fonts-noto-cjk")

include(CPack)
