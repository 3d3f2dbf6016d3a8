// Fuzzer: runs generated inputs through the exercise that the build names.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "shell/base/output.h"
#include "tests/fuzz/exercises/exercises.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace mirvo;
  thorough = false;
  if (output.log != nullptr) std::fclose(output.log);
  output.log = nullptr;
  const BrokenPromise broken = MIRVO_EXERCISE({reinterpret_cast<const char*>(data), size});
  if (broken == nullptr) return 0;
  std::fprintf(stderr, "Broken: %s\n", broken);
  std::abort();
}
