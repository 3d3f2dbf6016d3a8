// The scratch record of one evaluation, which the terms read and write. Each evaluation
// resets it, except for rows of `terms` that it does not compute: after a hit in the
// pawn cache the row of the pawns is that of an earlier evaluation.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/score.h"

namespace mirvo {

enum EvalStage : std::int32_t { Opening = 0, Middlegame = 1, Endgame = 2 };

/// Rows of `terms`, in report order.
enum EvalTerm {
  materialTerm,
  pawnsTerm,
  knightsTerm,
  bishopsTerm,
  rooksTerm,
  queensTerm,
  kingsTerm,
  develTerm,
  nEvalTerms = 9  // one row is kept spare; nothing reads it
};

/// Index of the union of all five kinds in `attacks` (0..4 are the kinds).
inline constexpr int unionAttacks = 5;
inline constexpr int nAttackSets = 7;  // one set is kept spare; nothing reads it

struct EvalRecord {
  Board* board;       // borrowed
  std::int32_t side;  // the side that the result is for
  EvalStage stage;
  Bitboard passed[nSides];
  Bitboard isolated[nSides];
  std::int32_t nonPawnMaterial[nSides];   // centipawns
  std::int32_t kingAttackers[nSides];     // enemy pieces that hit the side's king zone
  std::int32_t kingAttackWeight[nSides];  // and the sum of their weights
  std::int32_t kingTropism[nSides];       // amount for the nearness of all enemy pieces
  ScorePair terms[nSides][nEvalTerms];    // row 0 belongs to `side`
  Bitboard attacks[nSides][nAttackSets];  // by kind, then the union
  Bitboard kingZone[nSides];
};

}  // namespace mirvo
