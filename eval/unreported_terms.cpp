#include "board/bits.h"
#include "eval/eval_tables.h"
#include "eval/side_geometry.h"
#include "eval/terms.h"

namespace mirvo {

namespace {

template <int side>
std::int32_t CentreBlockadeOf(const Board& board) {
  constexpr Bitboard d2e2 = RelativeSquare<side>(11) | RelativeSquare<side>(12);
  const Bitboard* own = PiecesOf<side>(board);
  const Bitboard unmoved = own[pawn] & d2e2;
  const Bitboard next = side == white ? unmoved << 8 : unmoved >> 8;
  return centreBlockade * PopCount(next & (own[knight] | own[bishop]));
}

}  // namespace

MIRVO_COUNTS_BITS std::int32_t EvaluateCentreBlockade(const EvalRecord& record, int side) {
  const Board& board = *record.board;
  return side == white ? CentreBlockadeOf<white>(board) : CentreBlockadeOf<black>(board);
}

std::int32_t EvaluateWingPawns(const EvalRecord& record, int side) {
  constexpr Bitboard centreFiles = FileSet(3) | FileSet(4);
  const Board& board = *record.board;
  const Bitboard pawns = PiecesOf<white>(board)[pawn] | PiecesOf<black>(board)[pawn];
  if ((pawns & ~centreFiles) == 0) return 0;
  const Bitboard* own = board.pieces + side * nKinds;
  return (own[bishop] | own[rook] | own[queen]) != 0 ? wingPawnsEg : 0;
}

std::int32_t EvaluateThreats(const EvalRecord& record, int side) {
  const Board& board = *record.board;
  const Bitboard* sets = record.attacks[side];
  const Bitboard* enemy = board.pieces + (side ^ 1) * nKinds;
  const Bitboard targets =
      sets[unionAttacks] & ~record.attacks[side ^ 1][pawn] & board.sideOccupancyNoKing[side ^ 1];
  if (targets == 0) return 0;
  std::int32_t amount = 0;
  for (int victim = pawn; victim < king; ++victim) {
    const Bitboard hit = targets & enemy[victim];
    if (hit == 0) continue;
    unsigned attackers = 0;
    for (int attacker = pawn; attacker < king; ++attacker) {
      attackers |= ((sets[attacker] & hit) != 0 ? 1U : 0U) << attacker;
    }
    amount += ThreatsBy.of[victim][attackers];
  }
  return amount;
}

}  // namespace mirvo
