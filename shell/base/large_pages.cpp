#include "shell/base/large_pages.h"

namespace mirvo {

void TouchMemory(void* start, std::size_t bytes) {
  // The system provides a page at the first write to it.
  constexpr std::size_t smallestPage = 4096;
  volatile char* const memory = static_cast<char*>(start);
  for (std::size_t offset = 0; offset < bytes; offset += smallestPage) {
    const char kept = memory[offset];
    memory[offset] = kept;
  }
}

}  // namespace mirvo
