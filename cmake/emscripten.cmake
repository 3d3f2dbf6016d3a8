# Tool chain for WebAssembly: Debian's emscripten, and Node to run what it makes.
# Only the compiler and its C library are used, none of the JavaScript that
# emscripten can write around a program (web/package/host.js stands in its place).
set(emscripten_platform
  /usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake CACHE FILEPATH
  "CMake's description of emscripten")
# The versions that Mirvo is built and tested with. The files that the C library
# asks for are named differently in later ones (shell/base/files_web.cpp).
set(emscripten_version 3.1.6)
set(oldest_node 18)

find_program(MIRVO_EMXX em++)
find_program(MIRVO_NODE NAMES node nodejs)
if(NOT MIRVO_EMXX OR NOT EXISTS ${emscripten_platform})
  message(FATAL_ERROR "Building for the web needs Debian's emscripten ${emscripten_version}: "
    "apt-get install emscripten")
endif()
if(NOT MIRVO_NODE)
  message(FATAL_ERROR "Building for the web needs Node ${oldest_node} or later: "
    "apt-get install nodejs")
endif()

if(NOT MIRVO_WEB_TOOLS_CHECKED)
  execute_process(COMMAND ${MIRVO_EMXX} --version OUTPUT_VARIABLE found ERROR_VARIABLE found)
  if(NOT found MATCHES "emcc[^\n]* ([0-9.]+[0-9])" OR
     NOT CMAKE_MATCH_1 VERSION_EQUAL emscripten_version)
    message(FATAL_ERROR "Building for the web needs emscripten ${emscripten_version}, "
      "and ${MIRVO_EMXX} says:\n${found}")
  endif()
  execute_process(COMMAND ${MIRVO_NODE} --version OUTPUT_VARIABLE found ERROR_VARIABLE found)
  if(NOT found MATCHES "v([0-9.]+)" OR CMAKE_MATCH_1 VERSION_LESS oldest_node)
    message(FATAL_ERROR "Building for the web needs Node ${oldest_node} or later, "
      "and ${MIRVO_NODE} says:\n${found}")
  endif()
  set(MIRVO_WEB_TOOLS_CHECKED ON CACHE INTERNAL "The versions were looked at")
endif()

include(${emscripten_platform})
# Behind that, since the file is read once more and names scripts.
set(CMAKE_EXECUTABLE_SUFFIX_CXX .wasm)

# No exceptions are thrown, and nothing asks for a type at run time. The stack
# has room for the deepest search. The tables make the memory grow; the
# functions of the host (shell/base/host_web.h) are known to it alone.
set(CMAKE_CXX_FLAGS_INIT "-fno-exceptions -fno-rtti")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sALLOW_MEMORY_GROWTH=1 -sINITIAL_MEMORY=8388608 \
-sMAXIMUM_MEMORY=2147483648 -sTOTAL_STACK=4194304 -Wl,--stack-first -sERROR_ON_UNDEFINED_SYMBOLS=0 \
-sWARN_ON_UNDEFINED_SYMBOLS=0")

# What runs the programs made.
set(CMAKE_CROSSCOMPILING_EMULATOR ${MIRVO_NODE} ${CMAKE_CURRENT_LIST_DIR}/../web/run_program.mjs)
