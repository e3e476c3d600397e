# `cmake --install` (and `make install`): the program with its helpers, and what the desktop needs to
# list it in the menu and open document files with it: the .desktop entry, the icons and the MIME types
# of ".sim" and ".sme". The prefix defaults to the user's ~/.local; the desktop's caches are refreshed
# after the files are in place.
include(GNUInstallDirs)
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT AND DEFINED ENV{HOME})
  set(CMAKE_INSTALL_PREFIX "$ENV{HOME}/.local" CACHE PATH "Where `cmake --install` puts the program" FORCE)
endif()

set(VIRN_DESKTOP ${PROJECT_SOURCE_DIR}/resources/desktop)
# The office helper and the updater are found beside the program.
install(TARGETS virn-smeta RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET virn-office)
  install(TARGETS virn-office RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(PROGRAMS ${CMAKE_BINARY_DIR}/download_update_s8 DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${VIRN_DESKTOP}/virn-smeta.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${VIRN_DESKTOP}/virn-smeta-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME virn-smeta.xml)
install(FILES ${VIRN_DESKTOP}/virn-smeta.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${VIRN_DESKTOP}/virn-smeta.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/mimetypes
        RENAME application-x-virn-smeta.svg)
install(CODE [[
  set(share "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/share")
  find_program(VIRN_UPDATE_MIME update-mime-database)
  find_program(VIRN_UPDATE_DESKTOP update-desktop-database)
  if(VIRN_UPDATE_MIME)
    execute_process(COMMAND ${VIRN_UPDATE_MIME} "${share}/mime")
  endif()
  if(VIRN_UPDATE_DESKTOP)
    execute_process(COMMAND ${VIRN_UPDATE_DESKTOP} "${share}/applications")
  endif()
]])
