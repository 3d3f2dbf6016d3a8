#include "search/time_control.h"

#include <algorithm>

#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/base/text.h"

namespace mirvo {

constinit TimeControl timeControl;

namespace {

constexpr std::int32_t panicTimeLeft = 100;     // ms; below this with an increment
constexpr std::int32_t panicTime = 30;          // ms for the move
constexpr std::int32_t safetyMargin = 50;       // ms kept back per move with an increment
constexpr std::int32_t shortTimeLeft = 5000;    // ms
constexpr std::int32_t mediumTimeLeft = 30000;  // ms

std::int64_t TimeForMove(std::int64_t movesToGo, std::int64_t timeLeft, std::int64_t increment) {
  if (movesToGo != 0) return timeLeft / movesToGo;
  if (increment != 0) {
    if (timeLeft < panicTimeLeft) return panicTime;
    return timeLeft / 25 + increment / 2 - safetyMargin;
  }
  if (timeLeft < shortTimeLeft) return timeLeft / 40;
  if (timeLeft <= mediumTimeLeft) return timeLeft / 30;
  return timeLeft / 25;
}

}  // namespace

void AllocateTime(SearchLimits& limits, std::int32_t movesToGo, std::int32_t timeLeft,
                  std::int32_t increment) {
  const std::int64_t time = TimeForMove(movesToGo, timeLeft, increment);
  limits.milliseconds = Saturate(std::max<std::int64_t>(time, 0));
  Output(output, "Allowing %d ms for move (%d, %d, %d)\n", limits.milliseconds, movesToGo, timeLeft,
         increment);
}

void DoubleAllottedTime(SearchLimits& limits) {
  limits.milliseconds = MultiplySaturated(limits.milliseconds, 2);
}

void SetDeadline(SearchLimits& limits, std::int32_t overhead, const OwnClock& clock) {
  limits.deadline = noDeadline;
  if (overhead <= 0 || !clock.received) return;
  const std::int64_t time = std::int64_t{clock.timeLeft} - overhead;
  limits.deadline = Saturate(std::max<std::int64_t>(time, 1));
}

std::int64_t TimeLeft(const SearchLimits& limits) {
  // Time is up when the allotted time is exceeded or the deadline is reached.
  std::int64_t time = limits.milliseconds;
  if (limits.deadline != noDeadline) time = std::min(time, std::int64_t{limits.deadline} - 1);
  return time - ElapsedSince(timeControl.startTime);
}

bool TimeIsUp(const SearchLimits& limits) { return TimeLeft(limits) < 0; }

}  // namespace mirvo
