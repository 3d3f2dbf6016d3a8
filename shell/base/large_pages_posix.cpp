#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

#include "shell/base/large_pages.h"

namespace mirvo {
namespace {

// Linux's madvise requests. Headers of older systems lack the last two: to
// populate pages for writing (since 5.14) and to merge small pages in use into a
// large one (since 6.1). A kernel refuses a request that it does not know.
#ifdef MADV_HUGEPAGE
constexpr int useLargePages = MADV_HUGEPAGE;
constexpr int useSmallPages = MADV_NOHUGEPAGE;
constexpr int populateForWriting = 23;
constexpr int mergeSmallPages = 25;

bool Advise(void* start, std::size_t bytes, int advice) {
  return madvise(start, bytes, advice) == 0;
}
#else
constexpr int useLargePages = 0;
constexpr int useSmallPages = 0;
constexpr int populateForWriting = 0;
constexpr int mergeSmallPages = 0;

bool Advise(void*, std::size_t, int) { return false; }
#endif

}  // namespace

void* ReserveMemory(std::size_t bytes) {
  // Maps more than needed, so that it contains an aligned block, and unmaps the
  // rest at both ends.
  const std::size_t asked = bytes + largePageSize;
  void* const given =
      mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (given == MAP_FAILED) return nullptr;
  const std::size_t past = reinterpret_cast<std::uintptr_t>(given) % largePageSize;
  const std::size_t before = past == 0 ? 0 : largePageSize - past;
  char* const start = static_cast<char*>(given) + before;
  if (before != 0) munmap(given, before);
  if (before != largePageSize) munmap(start + bytes, largePageSize - before);
  // Some systems give large pages by default. Then a few thousand accesses would
  // bring in all of a table, each page cleared while the clock runs.
  Advise(start, bytes, useSmallPages);
  return start;
}

void ReleaseMemory(void* start, std::size_t bytes) { munmap(start, bytes); }

std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t most) {
  const std::size_t released = std::min(bytes, most);
  ReleaseMemory(static_cast<char*>(start) + (bytes - released), released);
  return bytes - released;
}

void PrefaultLargePage(void* start) {
  Advise(start, largePageSize, useLargePages);
  Advise(start, largePageSize, mergeSmallPages);
  if (!Advise(start, largePageSize, populateForWriting)) TouchMemory(start, largePageSize);
}

}  // namespace mirvo
