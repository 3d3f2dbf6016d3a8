if(MIRVO_SANITIZE)
  target_compile_options(mirvo_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mirvo_flags INTERFACE -fsanitize=address,undefined)
endif()
