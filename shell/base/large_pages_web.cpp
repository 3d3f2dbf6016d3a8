#include <cstdlib>

#include "shell/base/large_pages.h"

namespace mirvo {

// Memory grows by pages of 64 KiB that come zeroed, and is never given back to
// the browser: what is released is used for the next table.
void* ReserveMemory(std::size_t bytes) { return std::calloc(bytes, 1); }

void ReleaseMemory(void* start, std::size_t) { std::free(start); }

std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t) {
  ReleaseMemory(start, bytes);
  return 0;
}

// There are none to ask for, and a phone has no memory to spare for what is never
// used: it comes with the first use.
void PrefaultLargePage(void*) {}

}  // namespace mirvo
