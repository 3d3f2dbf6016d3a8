// Counters of the search for the statistics report.
#pragma once

#include <cstdint>

namespace mirvo {

/// Process-wide sums over all searches; nothing resets them.
struct SearchStats {
  std::int32_t nNodes = 0;    // moves counted by the main and root search
  std::int32_t nQSNodes = 0;  // moves counted by the quiescence search
  float depthSum = 0.0F;
  float depthCount = 0.0F;
  float branchingSum = 0.0F;
  float branchingCount = 0.0F;
  std::int32_t nExt = 0;
  std::int32_t nCheckExt = 0;  // no such extension: always 0
  std::int32_t nPromExt = 0;
  std::int32_t nPawnOnlyExt = 0;  // no such extension: always 0
  std::int32_t nOneMoveExt = 0;   // no such extension: always 0
  std::int32_t nSplits = 0;       // one searcher: always 0
};

/// Owner: search_stats.cpp. Writers: the search.
extern SearchStats searchStats;

/// Prints the "gen>", "ext>" and "mp>" lines.
void PrintSearchStats();

}  // namespace mirvo
