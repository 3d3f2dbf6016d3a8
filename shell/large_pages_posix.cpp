#include "shell/large_pages.h"

#include <sys/mman.h>

namespace mirvo {

void MoveToLargePage([[maybe_unused]] void* start) {
#ifdef MADV_HUGEPAGE
  // Newer than many systems' headers; kernels that do not know it refuse.
  constexpr int collapse = 25;
  madvise(start, largePageSize, MADV_HUGEPAGE);
  madvise(start, largePageSize, collapse);
#endif
}

}  // namespace mirvo
