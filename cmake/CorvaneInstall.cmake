# What an installed Corvane needs: the program, its resources under share/corvane, and its place on the desktop.
include(GNUInstallDirs)

set(resources "${CMAKE_INSTALL_DATADIR}/corvane")
install(TARGETS corvane RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(PROGRAMS "${CORVANE_WHISPER}" DESTINATION "${CMAKE_INSTALL_BINDIR}" RENAME corvane-whisper OPTIONAL)
install(DIRECTORY local-schema DESTINATION "${resources}")
install(DIRECTORY mac/engine DESTINATION "${resources}" USE_SOURCE_PERMISSIONS OPTIONAL)
install(FILES data/com.nimb.corvane.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES data/com.nimb.corvane.svg DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
