# mirvo_layer(NAME USES layer... SOURCES file...): the static library of a layer.
function(mirvo_layer name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE mirvo_warnings)
  target_link_libraries(${name} PUBLIC mirvo_flags)
endfunction()
