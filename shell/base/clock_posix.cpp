#include <sched.h>
#include <time.h>

#include "shell/base/clock.h"

namespace mirvo {

std::uint32_t SystemTickCount() {
  // The monotonic clock does not follow the calendar, so setting the system's
  // clock back never lengthens a search.
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const std::int64_t milliseconds =
      static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
  return static_cast<std::uint32_t>(milliseconds);
}

void YieldTimeSlice() { sched_yield(); }

void SystemSleep(std::uint32_t milliseconds) {
  timespec length{};
  length.tv_sec = static_cast<time_t>(milliseconds / 1000);
  length.tv_nsec = static_cast<decltype(length.tv_nsec)>(milliseconds % 1000) * 1'000'000;
  // A signal may cut the sleep short; callers only need an approximate sleep.
  nanosleep(&length, nullptr);
}

}  // namespace mirvo
