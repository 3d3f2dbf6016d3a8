// The time for one move: allocation from the clocks, and the search's start.
#pragma once

#include <cstdint>

#include "shell/config.h"

namespace mirvo {

struct TimeControl {
  std::uint32_t startTime = 0;  // tick count at the start of the move's time
};

/// Owner: time_control.cpp. Writers: Iterate, PonderHit.
extern TimeControl timeControl;

/// Turns the clock into milliseconds for this move, stores them in
/// config.FixedTimePerMove and prints the "Allowing" line. Times in ms, any
/// value; quotients are taken in 64 bits and saturated, negative ones are 0.
void AllocateTime(EngineConfig& config, std::int32_t movesToGo, std::int32_t timeLeft,
                  std::int32_t increment);

/// Doubles the allotted time (saturated): the first move out of the book.
void DoubleAllottedTime(EngineConfig& config);

/// Milliseconds of the allotted time that are left; negative when it is over.
std::int64_t TimeLeft(const EngineConfig& config);

/// Whether more than the allotted time has passed since the start.
bool TimeIsUp(const EngineConfig& config);

}  // namespace mirvo
