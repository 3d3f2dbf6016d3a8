// Perft: counts the legal move paths to a depth, making, testing and unmaking
// every move (no hash, no bulk counting), and times it.
#pragma once

#include <cstdint>

#include "board/board.h"

namespace mirvo {

inline constexpr int maxPerftDepth = 10;

/// Entry p counts the legal moves found at ply p.
extern std::uint64_t PerftCounts[maxPerftDepth];
/// Counts of helper searchers. Kept for the sum that PerftCountAtDepth falls back
/// to; the engine has no helpers, so they stay 0.
extern std::uint64_t PerftSplitCounts[2][maxPerftDepth];
/// Depth at which the recursion stops.
extern std::int32_t PerftTargetDepth;
/// Moves made by perft since the process started, legal or not. Kept for
/// measurements; the engine does not read it.
extern std::uint64_t nPerftMoves;

/// Adds the legal moves below `board` to PerftCounts from index `ply` on.
void PerftCount(Board& board, int ply);

/// Counts to `depth` (at most maxPerftDepth) and prints time, speed and splits.
void RunPerft(Board& board, int depth);

/// The count that the run mode shows for depth d = 1..maxPerftDepth.
std::uint64_t PerftCountAtDepth(int depth);

}  // namespace mirvo
