// Pondering: hits, misses and their statistics.
#pragma once

#include <cstdint>

#include "search/search_limits.h"

namespace mirvo {

struct PonderStats {
  std::uint32_t hits = 0;
  std::uint32_t misses = 0;
};

/// Owner: pondering.cpp. Writers: PonderHit counts hits; the XBoard front end counts
/// misses and resets both in a new game.
extern PonderStats ponderStats;

/// The opponent played the expected move: the search with these limits becomes a
/// timed one that starts now with the given clock. Prints "PONDER HIT. CONTINUING",
/// the "Allowing" line and the statistics line.
void PonderHit(SearchLimits& limits, std::int32_t movesToGo, std::int32_t timeLeft,
               std::int32_t increment);

/// Prints "Ponder hits = ..." (0.0 % when nothing was counted).
void PrintPonderStats();

}  // namespace mirvo
