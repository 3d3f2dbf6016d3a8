# The test library: Debian's build of it or, for another system, a build from the
# sources in Debian's package.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()
set(googletest_sources /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
add_subdirectory(${googletest_sources} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
# Its speed does not matter.
foreach(library gtest gtest_main)
  target_compile_options(${library} PRIVATE -O0)
endforeach()
if(NOT TARGET GTest::gtest_main)
  add_library(GTest::gtest ALIAS gtest)
  add_library(GTest::gtest_main ALIAS gtest_main)
endif()
