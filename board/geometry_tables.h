// Distances, pawn spans and paths between squares. Built once at start-up by
// the builders in attack_tables.h's list, read-only afterwards.
#pragma once

#include <cstdint>

#include "board/coding.h"

namespace mirvo {

inline constexpr int maxBallRadius = 7;

/// Rank difference plus file difference, and the larger of the two.
extern std::int32_t ManhattanDistance[nSquares][nSquares];
extern std::int32_t ChebyshevDistance[nSquares][nSquares];

/// Squares within Manhattan distance d = 1..7, the square itself included.
extern Bitboard ManhattanWithin[nSquares][maxBallRadius + 1];

/// All squares on higher (White) or lower (Black) ranks on the square's file
/// and the files beside it: where enemy pawns can block or capture this pawn.
extern Bitboard FrontSpanWhite[nSquares];
extern Bitboard FrontSpanBlack[nSquares];

/// Squares from the first (excluded) to the second (included) along a rank or
/// file, or along a diagonal; empty when the two share no such line.
extern Bitboard RookPath[nSquares][nSquares];
extern Bitboard BishopPath[nSquares][nSquares];

inline Bitboard FrontSpan(int side, int square) {
  return side == white ? FrontSpanWhite[square] : FrontSpanBlack[square];
}

void BuildPaths();
void BuildFrontSpans();
void BuildDistances();
void BuildManhattanWithin();

}  // namespace mirvo
