#include "search/search_limits.h"

namespace mirvo {

SearchLimits LimitsOf(const EngineConfig& config) {
  SearchLimits limits;
  limits.depth = config.DepthSearch;
  limits.milliseconds = config.FixedTimePerMove;
  limits.infinite = config.InfiniteThinkingTime != 0;
  return limits;
}

void StoreTimeLimits(EngineConfig& config, const SearchLimits& limits) {
  config.FixedTimePerMove = limits.milliseconds;
  config.InfiniteThinkingTime = limits.infinite ? 1 : 0;
}

}  // namespace mirvo
