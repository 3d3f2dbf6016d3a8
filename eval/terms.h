// The terms that Evaluate adds up, beside those of minor_terms.h. Each works for
// one side on the scratch record, returns centipawns that are good for that
// side, and may fill sets and counters of the record that later terms read; the
// order of calls is evaluate.cpp's.
#pragma once

#include "eval/eval_record.h"

namespace mirvo {

// ---------------------------------------------------------------- pawns.cpp

/// Pawn structure. Fills `passed` and `isolated` of the side.
ScorePair EvaluatePawns(EvalRecord& record, int side);

// --------------------------------------------------------------- pieces.cpp

/// Knights, bishops, rooks and queens. Needs the pawn attack sets, the isolated
/// pawns and the king zones of both sides; fills the rows of the four kinds in
/// `terms`, the side's attack sets of the four kinds and the enemy king's
/// attack counters. Returns the sum of the rows.
ScorePair EvaluatePieces(EvalRecord& record, int side);

// ----------------------------------------------------------------- king.cpp

/// Place, shelter and danger of the king. Needs the union attack sets and the
/// attack counters, so it runs after all piece terms of both sides.
ScorePair EvaluateKing(EvalRecord& record, int side);

// -------------------------------------------------------- passed_pawns.cpp

/// Needs the side's passed set and both union attack sets.
ScorePair EvaluatePassedPawns(EvalRecord& record, int side);

// --------------------------------------------------------------- threats.cpp

/// Enemy pieces under attack that no enemy pawn defends, each pair of attacker
/// kind and victim kind once; both halves. The term report has no row for them.
/// Needs the attack sets of both sides.
std::int32_t EvaluateThreats(const EvalRecord& record, int side);

}  // namespace mirvo
