# The test library: Debian's own build of it, or, where programs for another
# system are made, a build from the sources that Debian ships.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()
set(googletest_sources /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
add_subdirectory(${googletest_sources} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
# It is not what is measured.
foreach(library gtest gtest_main)
  target_compile_options(${library} PRIVATE -O0)
endforeach()
if(NOT TARGET GTest::gtest_main)
  add_library(GTest::gtest ALIAS gtest)
  add_library(GTest::gtest_main ALIAS gtest_main)
endif()
