#include <sys/mman.h>

#include <cstdint>

#include "shell/memory.h"

namespace mirvo {

void AdviseLargePages(void* block, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  // The call takes whole pages: only the aligned middle of the block.
  constexpr std::uintptr_t pageSize = 4096;
  const auto first = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t begin = (first + pageSize - 1) & ~(pageSize - 1);
  const std::uintptr_t end = (first + bytes) & ~(pageSize - 1);
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
  (void)block;
  (void)bytes;
#endif
}

}  // namespace mirvo
