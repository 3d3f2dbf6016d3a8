// The terms that Evaluate adds up. Each works for one side on the scratch
// record, returns centipawns that are good for that side, and may fill sets
// and counters of the record that later terms read; the order of calls is
// evaluate.cpp's.
#pragma once

#include "eval/eval_record.h"

namespace mirvo {

// ------------------------------------------------------------- material.cpp

/// Whether neither side can win: no pawn, rook or queen on the board and
/// nobody has two knights or two bishops. Bishop and knight against the bare
/// king counts as drawn too, a choice of this engine.
bool InsufficientMaterial(const Board& board);

/// Piece values. Fills `nonPawnMaterial`.
ScorePair EvaluateMaterial(EvalRecord& record, int side);

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

/// Squares around the king that count for its safety.
Bitboard KingZone(const Board& board, int side);

/// Place, shelter and danger of the king. Needs the union attack sets and the
/// attack counters, so it runs after all piece terms of both sides.
ScorePair EvaluateKing(EvalRecord& record, int side);

// -------------------------------------------------------- passed_pawns.cpp

/// Needs the side's passed set and both union attack sets.
ScorePair EvaluatePassedPawns(EvalRecord& record, int side);

// --------------------------------------------------------- development.cpp

/// Knights and bishops of the side on their squares of the initial position.
int MinorsAtHome(const Board& board, int side);

/// The opening stage's whole development value (middle game only): `given`,
/// the driver's penalty for the minors at home, and the queen and rook terms.
/// The running middle-game score is offered but not needed.
std::int32_t EvaluateDevelopment(const EvalRecord& record, int side, std::int32_t given,
                                 std::int32_t mgSoFar, int minorsAtHome);

// ------------------------------------------------- unreported_terms.cpp
// Amounts that the term report has no row for.

/// Minor pieces in front of unmoved d and e pawns; middle game only.
std::int32_t EvaluateCentreBlockade(const EvalRecord& record, int side);

/// Long-range pieces while there are pawns on the wings; end game only.
std::int32_t EvaluateWingPawns(const EvalRecord& record, int side);

/// Enemy pieces under attack that no enemy pawn defends, each pair of attacker
/// kind and victim kind once; both halves. Needs the attack sets of both sides.
std::int32_t EvaluateThreats(const EvalRecord& record, int side);

}  // namespace mirvo
