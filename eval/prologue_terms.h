// The terms of the evaluation's prologue, which read only the pieces; defined here so
// that they are inlined.
#pragma once

#include <cstdint>

#include "board/bits.h"
#include "board/board.h"
#include "board/square_sets.h"
#include "eval/eval_record.h"
#include "eval/eval_tables.h"
#include "eval/material.h"
#include "eval/score.h"

namespace mirvo {

/// Material of one side. Fills `nonPawnMaterial`.
inline ScorePair EvaluateMaterial(EvalRecord& record, int side) {
  const Bitboard* own = PiecesOf(*record.board, side);
  const std::int32_t pawns = PopCount(own[pawn]);
  const std::int32_t nonPawn = NonPawnMaterial(own, pawns);
  record.nonPawnMaterial[side] = nonPawn;
  return {nonPawn + pawnValue * pawns, nonPawn + pawnValueEg * pawns};
}

// -------------------------------------------------------------- development

/// Knights and bishops of the side on their squares of the initial position.
inline int MinorsAtHome(const Board& board, int side) {
  constexpr Bitboard knightFiles = FileSet(fileB) | FileSet(fileG);
  constexpr Bitboard bishopFiles = FileSet(fileC) | FileSet(fileF);
  const Bitboard* own = PiecesOf(board, side);
  return PopCount(((own[knight] & knightFiles) | (own[bishop] & bishopFiles)) &
                  RelativeRankSet(side, rank1));
}

/// Development in the opening stage (middle game only): `given`, the penalty for
/// the minors at home, and the queen and rook terms. An early queen holds the
/// minors back; a rook belongs in a corner until the king is safe. The running
/// middle-game score is kept as a parameter; nothing reads it.
inline std::int32_t EvaluateDevelopment(const EvalRecord& record, int side, std::int32_t given,
                                        std::int32_t /*mgSoFar*/, int minorsAtHome) {
  constexpr Bitboard cornerFiles = FileSet(fileA) | FileSet(fileH);
  const Bitboard backRank = RelativeRankSet(side, rank1);
  const Bitboard* own = PiecesOf(*record.board, side);
  std::int32_t amount = given;
  if ((own[queen] & FileSet(fileD) & backRank) == 0) amount += minorAtHomeQueenOut * minorsAtHome;
  if ((own[rook] & cornerFiles & backRank) == 0) amount += noCornerRook;
  return amount;
}

// ----------------------------------- terms without a row in the report

/// Penalty for minor pieces in front of unmoved d and e pawns; middle game only.
inline std::int32_t EvaluateCentreBlockade(const EvalRecord& record, int side) {
  const Bitboard* own = PiecesOf(*record.board, side);
  const Bitboard minors = own[knight] | own[bishop];
  const Bitboard belowMinors = side == white ? minors >> 8 : minors << 8;
  const Bitboard unmoved = own[pawn] & centreFiles & RelativeRankSet(side, rank2);
  return centreBlockade * PopCount(unmoved & belowMinors);
}

/// Bonus for bishops, rooks and queens while there are pawns on the wings; end
/// game only.
inline std::int32_t EvaluateWingPawns(const EvalRecord& record, int side) {
  const Board& board = *record.board;
  const Bitboard pawns = PiecesOf(board, white)[pawn] | PiecesOf(board, black)[pawn];
  const Bitboard* own = PiecesOf(board, side);
  const Bitboard longRange = own[bishop] | own[rook] | own[queen];
  return (pawns & ~centreFiles) != 0 && longRange != 0 ? wingPawnsEg : 0;
}

}  // namespace mirvo
