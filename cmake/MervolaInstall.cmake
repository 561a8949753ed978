# Installation under the usual prefixes, and the Debian package.
#   bin/                                          mervola, mervola-cli
#   share/applications/mervola.desktop
#   share/icons/hicolor/scalable/apps/mervola.svg
#   share/mervola/sources/                        source data the first start builds the atlas from
#   share/mervola/mervola.html                    the help page (as written into every atlas home)
#   share/doc/mervola/README.md
include(GNUInstallDirs)

# Installing and packaging take the programs as built (cmake --build build
# --target mervola mervola-cli), without building every test first.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

install(TARGETS mervola mervola-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# mervola-cli looks for its GDAL module beside itself, then in ../lib/mervola.
install(TARGETS mervola-cli-tools LIBRARY DESTINATION lib/mervola)
# The Access reader's helper process, looked for the same way.
install(TARGETS mervola-access RUNTIME DESTINATION lib/mervola)
install(FILES data/desktop/mervola.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/desktop/mervola.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(DIRECTORY data/sources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/mervola/sources)
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/mervola)

# The help page describes the atlas built from the sources (counts, notes on
# the data), so it is made by the builder itself when installing.
set(MERVOLA_HELP_STAGE ${PROJECT_BINARY_DIR}/help-page-atlas)
install(CODE "
  file(REMOVE_RECURSE \"${MERVOLA_HELP_STAGE}\")
  execute_process(COMMAND \"$<TARGET_FILE:mervola-cli>\" build-atlas --sources \"${PROJECT_SOURCE_DIR}/data/sources\"
                          --home \"${MERVOLA_HELP_STAGE}\"
                  OUTPUT_QUIET RESULT_VARIABLE mervola_help_rc)
  if(NOT mervola_help_rc EQUAL 0)
    message(FATAL_ERROR \"mervola-cli build-atlas failed while making the help page\")
  endif()
  file(INSTALL \"${MERVOLA_HELP_STAGE}/mervola.html\"
       DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/mervola\")
  file(REMOVE_RECURSE \"${MERVOLA_HELP_STAGE}\")
")

# cpack -G DEB: mervola_<version>_<arch>.deb. dpkg-shlibdeps turns the linked
# libraries (Qt 6, GDAL, SQLite, mdbtools) into Debian package dependencies;
# the Qt platform plugins (xcb, offscreen) and fonts are loaded at run time,
# so they are named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mervola)
set(CPACK_PACKAGE_VENDOR Mervola)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Atlante statistico delle comunità montane e dei comuni italiani")
set(CPACK_PACKAGE_DESCRIPTION
    "Mervola mostra su carta le comunità montane e i comuni di tutta l'Italia o di una regione,\n"
    "li colora per indicatori statistici, interroga e unisce tabelle e salva progetti.\n"
    "Contiene i dati di origine (confini openpolis/ISTAT, CC BY 4.0; attributi ISTAT, CC BY).")
set(CPACK_PACKAGE_CONTACT "Mervola <mervola@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation2")
include(CPack)
