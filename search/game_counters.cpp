#include "search/game_counters.h"

namespace mirvo {

constinit GameCounters gameCounters;

void CountReversibleMove(GameCounters& counters, bool reversible) {
  if (!reversible) {
    counters.reversibleMoves = 0;
    return;
  }
  ++counters.reversibleMoves;
  if (counters.reversibleMoves == 100) counters.hundredReached = true;
}

}  // namespace mirvo
