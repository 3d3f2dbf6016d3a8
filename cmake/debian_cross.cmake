# What the tool chains for other processors under Linux have in common: Debian's
# cross compilers, and qemu to run what they make. Needs `triplet`, the compilers'
# name of the target, and `emulator`, the command that runs its programs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_C_COMPILER ${triplet}-gcc)

include(${CMAKE_CURRENT_LIST_DIR}/target_folder.cmake)

# The target's loader and libraries lie in that folder instead of the root folder.
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L /usr/${triplet})

# Tests are chosen and repeated for a processor that is some ten times slower.
set(MIRVO_EMULATED ON)
