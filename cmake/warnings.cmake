# Warnings for the project's sources, and the flags that every object needs.
add_library(mirvo_warnings INTERFACE)
target_compile_options(mirvo_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2)
if(MIRVO_WERROR)
  target_compile_options(mirvo_warnings INTERFACE -Werror)
endif()

# Scores are computed in single precision and must agree on every build, so
# multiply-adds are never fused.
add_library(mirvo_flags INTERFACE)
target_compile_options(mirvo_flags INTERFACE -ffp-contract=off)
