# The processors that the program runs on, and profile-guided optimisation. No choice
# here may change a score or a node.
set(MIRVO_ARCH "" CACHE STRING "Processor to build for, in the words of -march; empty: any x86-64")
set_property(CACHE MIRVO_ARCH PROPERTY STRINGS "" native x86-64-v2 x86-64-v3)
if(MIRVO_ARCH)
  target_compile_options(mirvo_flags INTERFACE -march=${MIRVO_ARCH})
endif()

# Without position-independent code, tables such as the attack sets are read directly
# by address; position-independent code first needs the address in a register and
# takes a sixteenth more instructions in a search.
option(MIRVO_PIE "Make the optimised program position-independent" OFF)

# Packages hold what a distribution expects of every program: position-independent
# code, checks of the stack and of copies of memory, and a table of library functions
# that is read-only once the program runs. docs/performance.md has the cost.
option(MIRVO_HARDENED "Make the program as Debian makes its own; implies MIRVO_PIE" OFF)
if(MIRVO_HARDENED)
  set(MIRVO_PIE ON)
  target_compile_definitions(mirvo_flags INTERFACE _FORTIFY_SOURCE=2)
  target_compile_options(mirvo_flags INTERFACE -fstack-protector-strong -Werror=format-security)
  # No object tells in which folder it was built.
  target_compile_options(mirvo_flags INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
  target_link_options(mirvo_flags INTERFACE -Wl,-z,relro,-z,now)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  target_compile_options(mirvo_flags INTERFACE
    $<$<CONFIG:Release>:$<IF:$<BOOL:${MIRVO_PIE}>,-fPIE,-fno-pie>>)
  target_link_options(mirvo_flags INTERFACE
    $<$<CONFIG:Release>:$<IF:$<BOOL:${MIRVO_PIE}>,-pie,-no-pie>>)
endif()

# Two builds in one folder: the first program writes a profile beside its objects, the
# second is optimised with it (bench/build_pgo.sh does both). Functions that the runs
# did not reach keep the ordinary optimisation instead of being optimised for size.
set(MIRVO_PGO "" CACHE STRING "Profile: generate, use, or empty for none")
set_property(CACHE MIRVO_PGO PROPERTY STRINGS "" generate use)
if(MIRVO_PGO STREQUAL "generate")
  target_compile_options(mirvo_flags INTERFACE -fprofile-generate)
  target_link_options(mirvo_flags INTERFACE -fprofile-generate)
elseif(MIRVO_PGO STREQUAL "use")
  target_compile_options(mirvo_flags INTERFACE
    -fprofile-use -fprofile-partial-training -Wno-missing-profile -Wno-coverage-mismatch)
elseif(MIRVO_PGO)
  message(FATAL_ERROR "MIRVO_PGO is generate, use or empty, not ${MIRVO_PGO}")
endif()
