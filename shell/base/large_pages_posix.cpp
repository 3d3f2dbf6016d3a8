#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

#include "shell/base/large_pages.h"

namespace mirvo {
namespace {

// Linux's requests, of which the headers of an older system lack the last two:
// to write to every page (since 5.14), and to put small pages in use together to
// a large one (since 6.1). A system that does not know a request refuses it.
#ifdef MADV_HUGEPAGE
constexpr int inLargePages = MADV_HUGEPAGE;
constexpr int inSmallPages = MADV_NOHUGEPAGE;
constexpr int writtenTo = 23;
constexpr int putTogether = 25;

bool Advise(void* start, std::size_t bytes, int advice) {
  return madvise(start, bytes, advice) == 0;
}
#else
constexpr int inLargePages = 0;
constexpr int inSmallPages = 0;
constexpr int writtenTo = 0;
constexpr int putTogether = 0;

bool Advise(void*, std::size_t, int) { return false; }
#endif

}  // namespace

void* ReserveMemory(std::size_t bytes) {
  // More than wanted, so that a multiple of the large page lies within; what is
  // left over at both ends goes back.
  const std::size_t asked = bytes + largePageSize;
  void* const given =
      mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (given == MAP_FAILED) return nullptr;
  const std::size_t past = reinterpret_cast<std::uintptr_t>(given) % largePageSize;
  const std::size_t before = past == 0 ? 0 : largePageSize - past;
  char* const start = static_cast<char*>(given) + before;
  if (before != 0) munmap(given, before);
  if (before != largePageSize) munmap(start + bytes, largePageSize - before);
  // A system may give large pages unasked: then the first few thousand accesses
  // to a table of any size would take all of it, each page cleared on the clock.
  Advise(start, bytes, inSmallPages);
  return start;
}

void ReleaseMemory(void* start, std::size_t bytes) { munmap(start, bytes); }

std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t most) {
  const std::size_t released = std::min(bytes, most);
  ReleaseMemory(static_cast<char*>(start) + (bytes - released), released);
  return bytes - released;
}

void PrefaultLargePage(void* start) {
  Advise(start, largePageSize, inLargePages);
  Advise(start, largePageSize, putTogether);
  if (!Advise(start, largePageSize, writtenTo)) TouchMemory(start, largePageSize);
}

}  // namespace mirvo
