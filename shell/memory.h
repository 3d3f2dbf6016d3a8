// Advice to the operating system about large blocks of memory.
#pragma once

#include <cstddef>

namespace mirvo {

/// Asks for large pages behind a big block that is read at random: a lookup
/// then misses the page tables less often. Advice only; does nothing where the
/// system has no such call.
void AdviseLargePages(void* block, std::size_t bytes);

}  // namespace mirvo
