#include "board/bits.h"
#include "eval/eval_tables.h"
#include "eval/side_geometry.h"
#include "eval/terms.h"

namespace mirvo {

namespace {

constexpr bool TwoOrMore(Bitboard set) { return (set & (set - 1)) != 0; }

}  // namespace

bool InsufficientMaterial(const Board& board) {
  const Bitboard* whites = PiecesOf<white>(board);
  const Bitboard* blacks = PiecesOf<black>(board);
  const Bitboard matingMaterial =
      whites[pawn] | whites[rook] | whites[queen] | blacks[pawn] | blacks[rook] | blacks[queen];
  if (matingMaterial != 0) return false;
  return !TwoOrMore(whites[knight]) && !TwoOrMore(blacks[knight]) && !TwoOrMore(whites[bishop]) &&
         !TwoOrMore(blacks[bishop]);
}

MIRVO_COUNTS_BITS ScorePair EvaluateMaterial(EvalRecord& record, int side) {
  const Bitboard* own = record.board->pieces + side * nKinds;
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

}  // namespace mirvo
