#include <sys/mman.h>

#include <cstdint>

#include "shell/large_pages.h"

namespace mirvo {

void WantLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t pageSize = 4096;
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (address + pageSize - 1) / pageSize * pageSize;
  const std::uintptr_t end = (address + bytes) / pageSize * pageSize;
  // Rounding an address takes the way over an integer.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace mirvo
