# GoogleTest programs: how they are compiled and how CTest runs them.

# The engine is tested as it is shipped, with full optimisation. The tests themselves
# only call it and compile in half the time without. Their headers, above all those of
# the test library, are precompiled once for all of them.
add_library(mirvo_test_flags INTERFACE)
target_compile_options(mirvo_test_flags INTERFACE $<$<CONFIG:Release,Sanitize>:-O0>)
if(WIN32)
  # Otherwise objects for Windows have at most 65,535 sections, and every template
  # instance needs one.
  target_compile_options(mirvo_test_flags INTERFACE -Wa,-mbig-obj)
endif()
target_compile_definitions(mirvo_test_flags INTERFACE MIRVO_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(mirvo_test_flags INTERFACE mirvo_flags mirvo_warnings GTest::gtest)
if(MIRVO_EMULATED)
  target_compile_definitions(mirvo_test_flags INTERFACE MIRVO_EMULATED)
endif()

file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "// Only its headers matter.\n")
add_library(test_headers OBJECT ${CMAKE_BINARY_DIR}/test_headers.cpp)
target_link_libraries(test_headers PRIVATE mirvo_test_flags)
set_target_properties(test_headers PROPERTIES MIRVO_IS_TEST ON)
target_precompile_headers(test_headers PRIVATE
  <gtest/gtest.h> <algorithm> <array> <cstdint> <cstring> <deque> <filesystem> <fstream>
  <functional> <iterator> <map> <memory> <ostream> <random> <set> <sstream> <string> <utility>
  <vector>)

# Number of a program's sources compiled as one, unless CMAKE_UNITY_BUILD is set.
set(sources_together 7)

# The programs that an emulated build has: what another processor could compute
# differently. How the system's memory and processes behave is the emulator's there.
set(emulated_programs
  board_test book_test check_info_test eval_test hash_table_test reference_search_test
  search_test signature_test startup_tables_test)

# mirvo_test(NAME USES layer... SOURCES file... [SEPARATE file...] [LABELS label...]
#            [SHARDS count] [COST seconds] [ALONE filter...])
# One GoogleTest program, which links the named layers and nothing above them, and is
# one test: all its cases run in one process, in random order. The first line of its
# output names the seed of that order (--gtest_random_seed repeats it).
#   SEPARATE  sources with names that also occur in others: compiled by themselves
#   SHARDS    number of tests among which the cases are divided
#   COST      seconds, for starting long tests first when no earlier run is known
#   ALONE     cases that need their own process
# The results of single cases are in gtest-results/ of the build folder.
function(mirvo_test name)
  if(MIRVO_EMULATED AND NOT name IN_LIST emulated_programs)
    return()
  endif()
  cmake_parse_arguments(arg "" "SHARDS;COST" "SOURCES;SEPARATE;USES;LABELS;ALONE" ${ARGN})
  add_executable(${name} ${arg_SOURCES} ${arg_SEPARATE})
  target_link_libraries(${name} PRIVATE mirvo_test_flags ${arg_USES} GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  set_target_properties(${name} PROPERTIES MIRVO_IS_TEST ON)
  if(NOT DEFINED CMAKE_UNITY_BUILD)
    set_target_properties(${name} PROPERTIES
      UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${sources_together})
  endif()
  if(arg_SEPARATE)
    set_source_files_properties(${arg_SEPARATE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()

  set(exclude)
  set(number 0)
  foreach(filter IN LISTS arg_ALONE)
    math(EXPR number "${number} + 1")
    mirvo_test_process(${name} ${name}_alone_${number} --gtest_filter=${filter})
    string(APPEND exclude ":${filter}")
  endforeach()
  if(exclude)
    string(REGEX REPLACE "^:" "--gtest_filter=-" exclude ${exclude})
  endif()
  if(NOT arg_SHARDS)
    mirvo_test_process(${name} ${name} ${exclude})
    return()
  endif()
  foreach(shard RANGE 1 ${arg_SHARDS})
    mirvo_test_process(${name} ${name}_${shard} ${exclude})
    math(EXPR index "${shard} - 1")
    set_property(TEST ${name}_${shard} APPEND PROPERTY ENVIRONMENT
      GTEST_TOTAL_SHARDS=${arg_SHARDS} GTEST_SHARD_INDEX=${index})
  endforeach()
endfunction()

# mirvo_test_process(PROGRAM TEST [argument...]): one run of a test program.
# For use in mirvo_test only, whose labels and costs it uses.
function(mirvo_test_process program test)
  set(results ${CMAKE_BINARY_DIR}/gtest-results/${test}.xml)
  if(WIN32)
    # Wine's name of the root folder.
    set(results "Z:${results}")
  endif()
  add_test(NAME ${test} COMMAND ${program} --gtest_shuffle ${ARGN})
  set_tests_properties(${test} PROPERTIES
    LABELS "${arg_LABELS}" ENVIRONMENT "GTEST_OUTPUT=xml:${results}")
  if(arg_COST)
    set_tests_properties(${test} PROPERTIES COST ${arg_COST})
  endif()
  if(WIN32)
    set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED wine)
  endif()
endfunction()
