// The time for one move: allocation from the clocks, and the search's start.
#pragma once

#include <cstdint>

#include "shell/config/config.h"

namespace mirvo {

/// `TimeControl::deadline` when the allotted time alone counts.
inline constexpr std::int32_t noDeadline = -1;

struct TimeControl {
  std::uint32_t startTime = 0;         // tick count at the start of the move's time
  std::int32_t deadline = noDeadline;  // ms from then on, whatever is allotted
};

/// Owner: time_control.cpp. Writers: Iterate, PonderHit, SetDeadline.
extern TimeControl timeControl;

/// What is left on the clock of the side that the engine moves for.
struct OwnClock {
  std::int32_t timeLeft = 0;  // ms, as last received
  bool received = false;      // without a clock there is nothing to keep to
};

/// Turns the clock into milliseconds for this move, stores them in
/// config.FixedTimePerMove and prints the "Allowing" line. Times in ms, any
/// value; quotients are taken in 64 bits and saturated, negative ones are 0.
void AllocateTime(EngineConfig& config, std::int32_t movesToGo, std::int32_t timeLeft,
                  std::int32_t increment);

/// Doubles the allotted time (saturated): the first move out of the book.
void DoubleAllottedTime(EngineConfig& config);

/// Ends the coming (or, from now on, the running) timed search where the own
/// clock would run out less config.MoveOverhead, 1 ms after the start at the
/// earliest. Nothing ends it so with an overhead of 0 or below.
void SetDeadline(const EngineConfig& config, const OwnClock& clock);

/// Milliseconds until a timed search ends, by the allotted time or the deadline
/// before it; negative when it is to end now.
std::int64_t TimeLeft(const EngineConfig& config);

/// Whether more than the allotted time has passed since the start, or the
/// deadline is reached.
bool TimeIsUp(const EngineConfig& config);

}  // namespace mirvo
