// Large memory pages for big tables; one file of code for each system.
#pragma once

#include <cstddef>

namespace mirvo {

/// Asks the system to back `bytes` from `start` on with large pages as they are
/// first touched. A wish: contents stay, and where there are none nothing
/// happens.
void WantLargePages(void* start, std::size_t bytes);

}  // namespace mirvo
