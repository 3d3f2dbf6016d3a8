#include "eval/threats.h"

#include "eval/eval_tables.h"

namespace mirvo {

std::int32_t EvaluateThreats(const EvalRecord& record, int side) {
  const Board& board = *record.board;
  const Bitboard* sets = record.attacks[side];
  const Bitboard* enemy = PiecesOf(board, side ^ 1);
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
