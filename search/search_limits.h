// The limits of a search. Part of the search record: set before the search starts,
// changed by a ponder hit while it runs.
#pragma once

#include <cstdint>

#include "shell/config/config.h"

namespace mirvo {

/// `SearchLimits::deadline` when the allotted time alone counts.
inline constexpr std::int32_t noDeadline = -1;

/// For whom a search reports.
enum class ReportStyle : std::uint8_t {
  protocol,  // in the form of the protocol in use
  console,   // for people: a run of a test suite
};

struct SearchLimits {
  std::int32_t depth = 0;  // last iteration, in plies
  /// Allotted time in ms, from timeControl.startTime on.
  std::int32_t milliseconds = noFixedTime;
  std::int32_t deadline = noDeadline;  // ms from then on, whatever is allotted
  bool infinite = false;               // no clock
  /// Starts as a ponder search; searchFlags.pondering says whether it still ponders.
  bool ponder = false;
  ReportStyle reportStyle = ReportStyle::protocol;
};

/// Limits without a clock.
inline constexpr SearchLimits unlimited{.infinite = true};

/// The limits that the settings give a search: its depth and its time.
SearchLimits LimitsOf(const EngineConfig& config);

/// Stores the time limits of the coming or running search in
/// config.FixedTimePerMove and config.InfiniteThinkingTime, where the next search
/// starts from them. A running search reads its own limits only.
void StoreTimeLimits(EngineConfig& config, const SearchLimits& limits);

}  // namespace mirvo
