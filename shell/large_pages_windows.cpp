#include "shell/large_pages.h"

namespace mirvo {

// Large pages take a privilege here that few users have.
void PreferLargePages(void*, std::size_t) {}

}  // namespace mirvo
