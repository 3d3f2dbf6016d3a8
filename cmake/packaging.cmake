# Packages: "cpack" in a build folder makes a tar.gz and a .deb, or a zip for Windows. tools/release.sh makes all that a release has.
set(CPACK_PACKAGE_NAME mirvo)
set(CPACK_PACKAGE_VENDOR "Tavelin")
set(CPACK_PACKAGE_CONTACT "Tavelin <tavelin@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Chess engine for UCI and XBoard interfaces")
set(CPACK_PACKAGE_DESCRIPTION
"Mirvo plays chess for a graphical interface. It speaks the UCI and the XBoard
protocol and finds out by itself which of the two the interface wants. It plays
from an opening book, thinks on the opponent's time, explains its evaluation
term by term, counts moves (perft), runs EPD test suites and builds books.")
set(CPACK_PACKAGE_FILE_NAME
  "mirvo-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
# Whatever the umask of who makes the packages.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Gives the files in packages one time: that of the newest entry in
# packaging/changelog.Debian.
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/package_time.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xboard, polyglot")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
if(CMAKE_CROSSCOMPILING)
  # dpkg-shlibdeps knows this machine's libraries only. These are the versions that
  # it finds for the same program here; tests/packages compares them with what the
  # program asks for.
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  else()
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
  endif()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 11)")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()

file(STRINGS ${PROJECT_SOURCE_DIR}/packaging/changelog.Debian signed REGEX "^ -- ")
list(GET signed 0 signed)
string(REGEX REPLACE ".*>  " "" signed ${signed})
execute_process(COMMAND date --utc --date ${signed} +%s
  OUTPUT_VARIABLE package_time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(CONFIGURE OUTPUT ${CPACK_PROJECT_CONFIG_FILE} CONTENT
"set(ENV{SOURCE_DATE_EPOCH} @package_time@)
set(ENV{TZ} UTC)
" @ONLY)
include(CPack)
