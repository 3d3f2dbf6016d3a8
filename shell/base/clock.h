// The millisecond clock, and yielding or sleeping. Every time that the engine
// measures or allots comes from TickCount.
#pragma once

#include <cstdint>

namespace mirvo {

using TickSource = std::uint32_t (*)();

/// Milliseconds from a monotonic clock, wrapping at 32 bits.
std::uint32_t TickCount();

/// Replaces the clock (tests); null restores the system's.
void SetTickSource(TickSource source);

/// The platform's own clock, whatever SetTickSource was told.
std::uint32_t SystemTickCount();

/// Milliseconds since `start`, correct across the 32-bit wrap; negative when
/// the clock was before `start`.
inline std::int32_t ElapsedSince(std::uint32_t start) {
  return static_cast<std::int32_t>(TickCount() - start);
}

/// Zero-length sleep: yields the rest of the time slice.
void YieldTimeSlice();

/// Sleeps about `milliseconds`. Under a replaced clock it returns at once: the
/// time of such a run passes by counting, not by waiting.
void SleepMilliseconds(std::uint32_t milliseconds);

/// The platform's own sleep, whatever SetTickSource was told.
void SystemSleep(std::uint32_t milliseconds);

}  // namespace mirvo
