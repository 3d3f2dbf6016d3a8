#include "shell/base/clock.h"
#include "shell/base/host_web.h"

namespace mirvo {

std::uint32_t SystemTickCount() {
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(HostMilliseconds()));
}

// A worker shares its thread with nobody.
void YieldTimeSlice() {}

void SystemSleep(std::uint32_t milliseconds) { HostSleep(milliseconds); }

}  // namespace mirvo
