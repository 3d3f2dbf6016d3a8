#include <windows.h>

#include "shell/base/clock.h"

namespace mirvo {

std::uint32_t SystemTickCount() { return GetTickCount(); }

void YieldTimeSlice() { Sleep(0); }

void SystemSleep(std::uint32_t milliseconds) { Sleep(milliseconds); }

}  // namespace mirvo
