// The time for one move: its start, its allocation from the clocks, and whether
// it is up.
#pragma once

#include <cstdint>

#include "search/search_limits.h"

namespace mirvo {

struct TimeControl {
  std::uint32_t startTime = 0;  // tick count at the start of the move's time
};

/// Owner: time_control.cpp. Writers: Iterate, PonderHit.
extern TimeControl timeControl;

/// What is left on the clock of the side that the engine moves for.
struct OwnClock {
  std::int32_t timeLeft = 0;  // ms, as last received
  bool received = false;      // without a clock there is nothing to keep to
};

/// Computes the time for this move from the clock, stores it in the limits and prints
/// the "Allowing" line. Times in ms, any value; computed in 64 bits and saturated,
/// negative results are 0.
void AllocateTime(SearchLimits& limits, std::int32_t movesToGo, std::int32_t timeLeft,
                  std::int32_t increment);

/// Doubles the allotted time (saturated), for the first move out of book.
void DoubleAllottedTime(SearchLimits& limits);

/// Sets the deadline of a timed search to the time left on the engine's clock minus
/// `overhead` ms, at least 1 ms. No deadline if the overhead is not above 0 or the
/// clock is not known.
void SetDeadline(SearchLimits& limits, std::int32_t overhead, const OwnClock& clock);

/// Milliseconds until a timed search ends, by the allotted time or an earlier deadline;
/// negative when it must end now.
std::int64_t TimeLeft(const SearchLimits& limits);

/// Whether more than the allotted time has passed since the start, or the
/// deadline is reached.
bool TimeIsUp(const SearchLimits& limits);

}  // namespace mirvo
