# Tool chain for programs for s390x under Linux. It is there as a proof: numbers
# have their most significant byte first in memory, and nothing may depend on it.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(triplet s390x-linux-gnu)
set(emulator qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
