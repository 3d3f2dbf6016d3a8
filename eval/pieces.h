// Knights, bishops, rooks and queens of one side.
#pragma once

#include <cstdint>

#include "eval/eval_record.h"
#include "eval/score.h"

namespace mirvo {

/// Needs the pawn attack sets, the isolated pawns and the king zones of both
/// sides; fills the rows of the four kinds in `terms`, the side's attack sets of
/// the four kinds and the enemy king's attack counters. Returns the sum of the
/// rows.
ScorePair EvaluatePieces(EvalRecord& record, int side);

}  // namespace mirvo
