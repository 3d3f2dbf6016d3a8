#include "shell/base/large_pages.h"

namespace mirvo {

void TouchMemory(void* start, std::size_t bytes) {
  // Memory comes with the first write to a page.
  constexpr std::size_t smallestPage = 4096;
  volatile char* const memory = static_cast<char*>(start);
  for (std::size_t offset = 0; offset < bytes; offset += smallestPage) {
    const char kept = memory[offset];
    memory[offset] = kept;
  }
}

}  // namespace mirvo
