# mirvo_layer(NAME USES layer... SOURCES file...): one static library a layer.
function(mirvo_layer name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE mirvo_warnings)
  target_link_libraries(${name} PUBLIC mirvo_flags)
endfunction()

# mirvo_test(NAME USES layer... SOURCES file...): one GoogleTest program. It
# links the layers named and nothing above them.
function(mirvo_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES;LABELS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_USES} mirvo_warnings GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE MIRVO_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(CMAKE_CROSSCOMPILING)
    # Starting a foreign program takes longer than most tests: one start for
    # all the tests of a program.
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" FIXTURES_REQUIRED wine)
  else()
    gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60
      PROPERTIES LABELS "${arg_LABELS}")
  endif()
endfunction()
