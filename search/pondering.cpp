#include "search/pondering.h"

#include "search/search_flags.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"

namespace mirvo {

constinit PonderStats ponderStats;

void PonderHit(SearchLimits& limits, std::int32_t movesToGo, std::int32_t timeLeft,
               std::int32_t increment) {
  Output(output, "PONDER HIT. CONTINUING\n");
  limits.infinite = false;
  timeControl.startTime = TickCount();
  AllocateTime(limits, movesToGo, timeLeft, increment);
  searchFlags.pondering = false;
  ++ponderStats.hits;
  PrintPonderStats();
}

void PrintPonderStats() {
  const std::uint32_t total = ponderStats.hits + ponderStats.misses;
  const float percent =
      total == 0 ? 0.0F : static_cast<float>(ponderStats.hits) * 100.0F / static_cast<float>(total);
  Output(output, "Ponder hits = %d, misses = %d, percenthits = %.1f%%\n",
         static_cast<std::int32_t>(ponderStats.hits), static_cast<std::int32_t>(ponderStats.misses),
         static_cast<double>(percent));
}

}  // namespace mirvo
