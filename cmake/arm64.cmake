# Tool chain for programs for 64-bit ARM under Linux. The emulator is held to the
# oldest processor that there is, so that nothing newer is ever needed.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(triplet aarch64-linux-gnu)
set(emulator qemu-aarch64 -cpu cortex-a53)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
