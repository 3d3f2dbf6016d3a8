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

/// Turns the clock into milliseconds for this move, allots them and prints the
/// "Allowing" line. Times in ms, any value; quotients are taken in 64 bits and
/// saturated, negative ones are 0.
void AllocateTime(SearchLimits& limits, std::int32_t movesToGo, std::int32_t timeLeft,
                  std::int32_t increment);

/// Doubles the allotted time (saturated): the first move out of the book.
void DoubleAllottedTime(SearchLimits& limits);

/// Ends a timed search where the own clock would run out less `overhead` ms, 1 ms
/// after the start at the earliest. Nothing ends it so with an overhead of 0 or
/// below.
void SetDeadline(SearchLimits& limits, std::int32_t overhead, const OwnClock& clock);

/// Milliseconds until a timed search ends, by the allotted time or the deadline
/// before it; negative when it is to end now.
std::int64_t TimeLeft(const SearchLimits& limits);

/// Whether more than the allotted time has passed since the start, or the
/// deadline is reached.
bool TimeIsUp(const SearchLimits& limits);

}  // namespace mirvo
