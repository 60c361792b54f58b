# What makes Gavelscope a citizen of the desktop and of Debian: the files desktops, man and bash look
# for, and the .deb that carries them with the programs (cpack -G DEB in the build folder).
# Included from the top-level CMakeLists.txt, so that CPackConfig.cmake lands in the build's root.
include(GNUInstallDirs)
set(GAVELSCOPE_PACKAGING_DIR "${CMAKE_CURRENT_LIST_DIR}")

# Icons: one drawing (resources/make_pictures.py), drawn at each size by packaging/make_icons.py.
# The 48 px one is the window's own icon, so that the two can never differ.
foreach(size 16 32 64 128 256)
  install(FILES "${GAVELSCOPE_PACKAGING_DIR}/icons/hicolor/${size}x${size}/apps/gavelscope.png"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/resources/gavelscope.png"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/48x48/apps)
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/icons/hicolor/scalable/apps/gavelscope.svg"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

# The menu entry keeps its plain name (gavelscope.desktop); the metainfo names it as its launchable.
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/gavelscope.desktop" DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/io.github.gavelscope.Gavelscope.metainfo.xml"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/man/gavelscope.1" "${GAVELSCOPE_PACKAGING_DIR}/man/gavelscope-cli.1"
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/completion/gavelscope-cli"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/copyright" DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/gavelscope)

set(CPACK_PACKAGE_NAME gavelscope)
set(CPACK_PACKAGE_VENDOR "The Gavelscope developers")
set(CPACK_PACKAGE_CONTACT "The Gavelscope developers <developers@gavelscope.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://github.com/gavelscope/gavelscope")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "research tool for sellers on auction sites")
# Wrapped by hand: dpkg shows the lines of a description as they are.
set(CPACK_PACKAGE_DESCRIPTION [[
Gavelscope reads the listing pages of the USA and the UK auction site and
shows today's keywords per category, today's auction counts per
sub-category, the shared hot item history and hot item queries over chosen
categories. Every list can be searched, exported and opened in the web
browser.

gavelscope is the window; gavelscope-cli runs the same views from a terminal
or a script, with text, CSV or JSON output. Both can start bundled stand-in
sites (--sandbox) to try them offline.]])
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# The libraries come from the programs themselves; --sandbox runs the stand-in sites with the
# system Python and its FTP server module, which no binary links.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3, python3-pyftpdlib")
# The painted face names Arial and Times New Roman; these are their metric stand-ins.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation")
configure_file("${GAVELSCOPE_PACKAGING_DIR}/prerm.in" "${CMAKE_BINARY_DIR}/packaging/prerm" @ONLY
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/packaging/prerm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)

# The daily recording into the research store, as a user service and its timer. Both are off until the
# user enables the timer (systemctl --user enable --now gavelscope-record.timer): nothing is recorded
# otherwise. User units live in lib/systemd/user whatever the machine's library folder is called.
install(FILES "${GAVELSCOPE_PACKAGING_DIR}/systemd/gavelscope-record.service"
  "${GAVELSCOPE_PACKAGING_DIR}/systemd/gavelscope-record.timer"
  DESTINATION lib/systemd/user)
