# Texts that are installed compressed, always as the same bytes: gzip notes neither
# their names nor their times.
find_program(MIRVO_GZIP gzip REQUIRED)

# mirvo_install_compressed(FILE NAME FOLDER): installs FILE as NAME.gz.
function(mirvo_install_compressed file name folder)
  get_filename_component(file ${file} ABSOLUTE)
  set(compressed ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
  add_custom_command(OUTPUT ${compressed}
    COMMAND ${MIRVO_GZIP} --best --no-name --stdout ${file} > ${compressed}
    DEPENDS ${file} VERBATIM)
  add_custom_target(compressed_${name} ALL DEPENDS ${compressed})
  install(FILES ${compressed} DESTINATION ${folder})
endfunction()

# mirvo_install_man(page...): manual pages of games.
function(mirvo_install_man)
  foreach(page IN LISTS ARGN)
    get_filename_component(name ${page} NAME)
    mirvo_install_compressed(${page} ${name} ${CMAKE_INSTALL_MANDIR}/man6)
  endforeach()
endfunction()
