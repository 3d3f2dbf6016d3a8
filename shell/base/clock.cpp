#include "shell/base/clock.h"

namespace mirvo {

namespace {

constinit TickSource tickSource = SystemTickCount;

}  // namespace

std::uint32_t TickCount() { return tickSource(); }

void SetTickSource(TickSource source) { tickSource = source != nullptr ? source : SystemTickCount; }

void SleepMilliseconds(std::uint32_t milliseconds) {
  if (tickSource == SystemTickCount) SystemSleep(milliseconds);
}

}  // namespace mirvo
