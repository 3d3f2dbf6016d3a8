# Packages of what is installed: "cpack" in a build folder makes a tar.gz and a
# .deb, or a zip for Windows.
set(CPACK_PACKAGE_NAME mirvo)
set(CPACK_PACKAGE_VENDOR "Tavelin")
set(CPACK_PACKAGE_CONTACT "Tavelin <tavelin@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Chess engine for UCI and XBoard interfaces")
set(CPACK_PACKAGE_FILE_NAME
  "mirvo-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xboard, polyglot")
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()
include(CPack)
