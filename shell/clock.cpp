#include "shell/clock.h"

namespace mirvo {

namespace {

constinit TickSource tickSource = SystemTickCount;

}  // namespace

std::uint32_t TickCount() { return tickSource(); }

void SetTickSource(TickSource source) { tickSource = source != nullptr ? source : SystemTickCount; }

}  // namespace mirvo
