#include <windows.h>

#include "shell/base/large_pages.h"

namespace mirvo {

void* ReserveMemory(std::size_t bytes) {
  return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void ReleaseMemory(void* start, std::size_t) { VirtualFree(start, 0, MEM_RELEASE); }

std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t) {
  ReleaseMemory(start, bytes);
  return 0;
}

// Large pages need a privilege on Windows that few users have.
void PrefaultLargePage(void* start) { TouchMemory(start, largePageSize); }

}  // namespace mirvo
