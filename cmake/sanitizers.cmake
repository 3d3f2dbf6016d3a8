# Instrumented builds: sanitizers, coverage, fuzzers.
if(MIRVO_SANITIZE)
  # A third of what tests take to compile is checks of every pointer for null and
  # alignment. The address sanitizer stops at a null pointer as well, and the
  # engine's own objects keep all checks.
  set(less_for_tests $<$<BOOL:$<TARGET_PROPERTY:MIRVO_IS_TEST>>:-fno-sanitize=null,alignment,object-size>)
  target_compile_options(mirvo_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    ${less_for_tests})
  target_link_options(mirvo_flags INTERFACE -fsanitize=address,undefined)
endif()
# The build type of the sanitizer preset: fast enough for whole games, and
# small debug records (line numbers only) so that it links quickly.
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g1" CACHE STRING "Flags of the Sanitize build type")

if(MIRVO_COVERAGE)
  target_compile_options(mirvo_flags INTERFACE --coverage -fprofile-update=atomic)
  # An assertion would count as a branch that no test may take.
  target_compile_definitions(mirvo_flags INTERFACE NDEBUG)
  target_link_options(mirvo_flags INTERFACE --coverage)
endif()

# Fuzzers need every object instrumented; the sanitizers report what went wrong.
if(MIRVO_FUZZ)
  set(fuzz_flags -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
    -fno-sanitize-coverage=trace-cmp)
  target_compile_options(mirvo_flags INTERFACE ${fuzz_flags} -fno-omit-frame-pointer)
  target_link_options(mirvo_flags INTERFACE ${fuzz_flags})
endif()
