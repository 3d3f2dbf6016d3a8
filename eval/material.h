// Piece values in centipawns for evaluation, search and exchanges, and the test for
// insufficient material.
#pragma once

#include <cstdint>

#include "board/bits.h"
#include "board/board.h"

namespace mirvo {

inline constexpr std::int32_t pawnValue = 100;
inline constexpr std::int32_t pawnValueEg = 110;
inline constexpr std::int32_t knightValue = 400;
inline constexpr std::int32_t bishopValue = 400;
inline constexpr std::int32_t rookValue = 600;
inline constexpr std::int32_t queenValue = 1100;

/// A knight gains 100/16 per own pawn above this count, a rook loses 100/8.
inline constexpr std::int32_t usualPawnCount = 5;
inline constexpr std::int32_t pawnCountScale = 100;
inline constexpr std::int32_t knightPawnDivisor = 16;
inline constexpr std::int32_t rookPawnDivisor = 8;

/// Value of a side's knights, bishops, rooks and queens (bitboards `own`) with so many
/// pawns of its own. Knights like closed positions, rooks open ones. Both quotients
/// round toward zero, on either side of the usual count.
inline std::int32_t NonPawnMaterial(const Bitboard* own, std::int32_t nPawns) {
  const std::int32_t oneKnight =
      knightValue + (nPawns - usualPawnCount) * pawnCountScale / knightPawnDivisor;
  const std::int32_t oneRook =
      rookValue + (usualPawnCount - nPawns) * pawnCountScale / rookPawnDivisor;
  return PopCount(own[knight]) * oneKnight + PopCount(own[bishop]) * bishopValue +
         PopCount(own[rook]) * oneRook + PopCount(own[queen]) * queenValue;
}

/// Whether neither side can win: no pawn, rook or queen on the board, and neither side
/// has two knights or two bishops. Bishop and knight against a lone king counts as
/// drawn too, a choice of this engine.
inline bool InsufficientMaterial(const Board& board) {
  const Bitboard* whites = PiecesOf(board, white);
  const Bitboard* blacks = PiecesOf(board, black);
  const Bitboard matingMaterial =
      whites[pawn] | whites[rook] | whites[queen] | blacks[pawn] | blacks[rook] | blacks[queen];
  if (matingMaterial != 0) return false;
  const auto twoOrMore = [](Bitboard set) { return (set & (set - 1)) != 0; };
  return !twoOrMore(whites[knight]) && !twoOrMore(blacks[knight]) && !twoOrMore(whites[bishop]) &&
         !twoOrMore(blacks[bishop]);
}

}  // namespace mirvo
