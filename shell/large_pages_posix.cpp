#include "shell/large_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace mirvo {

void PreferLargePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  // Advice is taken for whole small pages only.
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (begin + page - 1) / page * page;
  if (first >= begin + bytes) return;
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  madvise(reinterpret_cast<void*>(first), begin + bytes - first, MADV_HUGEPAGE);
#endif
}

}  // namespace mirvo
