// The reversible-move counter of the game, kept for debuggers; nothing reads it,
// and no draw is claimed from it.
#pragma once

#include <cstdint>

#include "board/move.h"

namespace mirvo {

struct GameCounters {
  std::int32_t reversibleMoves = 0;  // half-moves without capture or pawn move
  bool hundredReached = false;       // set when the count becomes exactly 100
};

/// Owner: game_counters.cpp. Writers: Think, the XBoard front end.
extern GameCounters gameCounters;

/// Counts one half-move: a reversible one adds 1, any other starts again at 0.
void CountReversibleMove(GameCounters& counters, bool reversible);

}  // namespace mirvo
