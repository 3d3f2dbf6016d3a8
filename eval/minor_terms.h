// The terms that a few instructions tell, and the zone of a king: defined here
// so that they are compiled into the evaluation that calls them for both sides.
#pragma once

#include <cstdint>

#include "board/bits.h"
#include "board/board.h"
#include "board/geometry_tables.h"
#include "board/square_sets.h"
#include "eval/eval_record.h"
#include "eval/eval_tables.h"
#include "eval/score.h"

namespace mirvo {

// ----------------------------------------------------------------- material

/// Whether neither side can win: no pawn, rook or queen on the board and
/// nobody has two knights or two bishops. Bishop and knight against the bare
/// king counts as drawn too, a choice of this engine.
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

/// Piece values. Fills `nonPawnMaterial`.
inline ScorePair EvaluateMaterial(EvalRecord& record, int side) {
  const Bitboard* own = PiecesOf(*record.board, side);
  const std::int32_t pawns = PopCount(own[pawn]);
  // Knights like closed positions, rooks open ones. Both quotients round
  // toward zero, on either side of the usual count.
  const std::int32_t knightValue =
      knightBase + (pawns - usualPawnCount) * pawnCountScale / knightPawnDivisor;
  const std::int32_t rookValue =
      rookBase + (usualPawnCount - pawns) * pawnCountScale / rookPawnDivisor;
  const std::int32_t nonPawn = PopCount(own[knight]) * knightValue +
                               PopCount(own[bishop]) * bishopValue +
                               PopCount(own[rook]) * rookValue + PopCount(own[queen]) * queenValue;
  record.nonPawnMaterial[side] = nonPawn;
  return {nonPawn + pawnMg * pawns, nonPawn + pawnEg * pawns};
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

/// The opening stage's whole development value (middle game only): `given`,
/// the driver's penalty for the minors at home, and the queen and rook terms.
/// An early queen holds the minors back; rooks belong in a corner until the
/// king is safe. The running middle-game score is offered but not needed.
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

// ----------------------------------- amounts that the term report has no row for

/// Minor pieces in front of unmoved d and e pawns; middle game only.
inline std::int32_t EvaluateCentreBlockade(const EvalRecord& record, int side) {
  const Bitboard* own = PiecesOf(*record.board, side);
  const Bitboard minors = own[knight] | own[bishop];
  const Bitboard belowMinors = side == white ? minors >> 8 : minors << 8;
  const Bitboard unmoved = own[pawn] & centreFiles & RelativeRankSet(side, rank2);
  return centreBlockade * PopCount(unmoved & belowMinors);
}

/// Long-range pieces while there are pawns on the wings; end game only.
inline std::int32_t EvaluateWingPawns(const EvalRecord& record, int side) {
  const Board& board = *record.board;
  const Bitboard pawns = PiecesOf(board, white)[pawn] | PiecesOf(board, black)[pawn];
  const Bitboard* own = PiecesOf(board, side);
  const Bitboard longRange = own[bishop] | own[rook] | own[queen];
  return (pawns & ~centreFiles) != 0 && longRange != 0 ? wingPawnsEg : 0;
}

// ---------------------------------------------------------------- king zone

/// Squares around the king that count for its safety. A king on its back rank
/// is guarded by the three files of its wing up to the third rank; e1 and e8
/// count as king side already. Elsewhere the zone is the neighbourhood of
/// Manhattan radius 2.
inline Bitboard KingZone(const Board& board, int side) {
  if (board.kingRank[side] != RelativeRank(side, rank1)) {
    return ManhattanWithin[KingSquare(board, side)][kingZoneRadius];
  }
  const Bitboard threeRanks = RanksBehind(side, RelativeRank(side, rank4));
  return threeRanks & (board.kingFile[side] < fileE ? filesAToC : filesFToH);
}

}  // namespace mirvo
