// Large memory pages for big tables; one file of code for each system.
#pragma once

#include <cstddef>

namespace mirvo {

inline constexpr std::size_t largePageSize = std::size_t{1} << 21;

/// Asks the system to put the large page's worth of memory from `start` on,
/// which is a multiple of largePageSize, into one page. Takes less than a
/// millisecond. A wish: contents stay, and where it cannot be met nothing
/// happens.
void MoveToLargePage(void* start);

}  // namespace mirvo
