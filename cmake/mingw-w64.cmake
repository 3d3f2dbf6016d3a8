# Tool chain for programs for 64-bit Windows, built on Debian with mingw-w64
# and tested under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The variant with POSIX threads: the other one lacks std::thread, which the
# test library wants.
set(triplet x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

include(${CMAKE_CURRENT_LIST_DIR}/target_folder.cmake)

# One file without libraries beside it, and room for the deepest search: the
# default stack is much smaller than on other systems. Without the time of linking
# equal sources make equal programs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--stack,16777216 -Wl,--no-insert-timestamp")

# What runs the programs made: Wine with a home of its own in the build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tests/windows/run_in_wine
  ${CMAKE_BINARY_DIR}/wine)
