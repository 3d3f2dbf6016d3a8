// Large memory pages for big tables; one file of code for each system.
#pragma once

#include <cstddef>

namespace mirvo {

/// Asks the system to serve memory that nobody has touched yet in large pages,
/// as far as whole ones lie within it. A wish: where it cannot be met nothing
/// happens, and contents never change.
void PreferLargePages(void* start, std::size_t bytes);

}  // namespace mirvo
