# What "cmake --install" puts where, and packages of it: "cpack -G TGZ" and
# "cpack -G DEB" in a build folder. The program finds nothing by itself: the
# book is named in config.txt or copied into the working directory.
include(GNUInstallDirs)
install(TARGETS mirvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(FILES data/mirvo-suite.epd DESTINATION ${CMAKE_INSTALL_DATADIR}/mirvo)
if(TARGET opening_book)
  install(FILES ${CMAKE_BINARY_DIR}/data/book.bk DESTINATION ${CMAKE_INSTALL_DATADIR}/mirvo)
endif()

set(CPACK_PACKAGE_NAME mirvo)
set(CPACK_PACKAGE_VENDOR "Tavelin")
set(CPACK_PACKAGE_CONTACT "Tavelin <tavelin@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Chess engine for UCI and XBoard interfaces")
set(CPACK_PACKAGE_FILE_NAME
  "mirvo-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
