#include "shell/memory.h"

namespace mirvo {

// Large pages need a privilege that users rarely have.
void AdviseLargePages(void*, std::size_t) {}

}  // namespace mirvo
