# The system that the program runs on: the suffix of the files with its calls.
if(EMSCRIPTEN)
  set(mirvo_platform web)
elseif(WIN32)
  set(mirvo_platform windows)
else()
  set(mirvo_platform posix)
endif()
