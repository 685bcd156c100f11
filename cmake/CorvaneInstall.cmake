# What an installed Corvane needs: the program, its resources under share/corvane, and its place on the desktop.
# tools/package makes a Debian package of it.
include(GNUInstallDirs)

set(CORVANE_ENGINE_MODULES "${CMAKE_SOURCE_DIR}/mac/engine/node_modules" CACHE PATH "The engines' libraries and Node")
set(CORVANE_USER_UNITS lib/systemd/user CACHE STRING "Where systemd looks for units of users, below the prefix")
set(resources "${CMAKE_INSTALL_DATADIR}/corvane")
install(TARGETS corvane RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(PROGRAMS "${CORVANE_WHISPER}" DESTINATION "${CMAKE_INSTALL_BINDIR}" RENAME corvane-whisper OPTIONAL)
install(DIRECTORY local-schema docs/help DESTINATION "${resources}")
install(DIRECTORY scripts DESTINATION "${resources}" USE_SOURCE_PERMISSIONS)
install(DIRECTORY mac/engine DESTINATION "${resources}" USE_SOURCE_PERMISSIONS
    PATTERN node_modules EXCLUDE PATTERN tests EXCLUDE)
# Of Node only the program is needed.
install(DIRECTORY "${CORVANE_ENGINE_MODULES}" DESTINATION "${resources}/engine" USE_SOURCE_PERMISSIONS OPTIONAL
    REGEX "/node_modules/(\\.bin|node-linux-[a-z0-9]+/(include|share))$" EXCLUDE)

set(desktop "${CMAKE_BINARY_DIR}/desktop")
configure_file(data/com.nimb.corvane.service.in "${desktop}/com.nimb.corvane.service" @ONLY)
configure_file(data/corvane.service.in "${desktop}/corvane.service" @ONLY)
# A program that was not installed has no service file, so its entry must not count on one.
file(READ data/com.nimb.corvane.desktop entry)
string(REPLACE "DBusActivatable=false" "DBusActivatable=true" entry "${entry}")
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr") # a desktop may not look there for programs
    string(REPLACE "Exec=corvane" "Exec=\"${CMAKE_INSTALL_FULL_BINDIR}/corvane\"" entry "${entry}")
endif()
file(CONFIGURE OUTPUT "${desktop}/com.nimb.corvane.desktop" CONTENT "${entry}" @ONLY)

install(FILES "${desktop}/com.nimb.corvane.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${desktop}/com.nimb.corvane.service" DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/services")
install(FILES "${desktop}/corvane.service" DESTINATION "${CORVANE_USER_UNITS}")
install(FILES data/com.nimb.corvane.svg DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
install(FILES data/com.nimb.corvane.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES data/corvane.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
if(CORVANE_LIBRARIES)
    install(FILES "${CORVANE_LIBRARIES}" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/corvane")
endif()
install(FILES data/copyright DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/corvane")
install(FILES data/completions/corvane.bash DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    RENAME corvane)
install(FILES data/completions/_corvane DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
install(FILES data/completions/corvane.fish DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_CONTACT "The Corvane developers <developers@corvane.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "private inbox for every channel of one business owner")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
