// Safety of a king: its zone, and the term for its square, shelter and danger.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/geometry_tables.h"
#include "board/square_sets.h"
#include "eval/eval_record.h"
#include "eval/eval_tables.h"
#include "eval/score.h"

namespace mirvo {

/// Centipawns by danger points. Built at start-up, read-only afterwards.
extern std::int32_t KingDangerTable[nKingDanger];

/// Called once by start-up.
void BuildKingDangerTable();

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

/// Square, shelter and danger of the side's king. Needs the union attack sets and the
/// attack counters, so it runs after the pieces of both sides.
ScorePair EvaluateKing(EvalRecord& record, int side);

}  // namespace mirvo
