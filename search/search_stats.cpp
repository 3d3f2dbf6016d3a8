#include "search/search_stats.h"

#include "shell/base/output.h"

namespace mirvo {

constinit SearchStats searchStats;

namespace {

// Average for the report; 0 if nothing was counted.
double Average(float sum, float count) {
  return count == 0.0F ? 0.0 : static_cast<double>(sum / count);
}

}  // namespace

void PrintSearchStats() {
  const SearchStats& stats = searchStats;
  Output(output,
         "gen> nNodes: %d nQSNodes: %d branchFactor: %.2f avgDepth: %.1f\n"
         "ext> nExt: %d nCheckExt: %d nPromExt: %d nPawnOnlyExt: %d nOneMoveExt: %d\n"
         "mp> nSplits: %d\n",
         stats.nNodes, stats.nQSNodes, Average(stats.branchingSum, stats.branchingCount),
         Average(stats.depthSum, stats.depthCount), stats.nExt, stats.nCheckExt, stats.nPromExt,
         stats.nPawnOnlyExt, stats.nOneMoveExt, stats.nSplits);
}

}  // namespace mirvo
