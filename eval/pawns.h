// Pawn structure of one side.
#pragma once

#include <cstdint>

#include "eval/eval_record.h"
#include "eval/score.h"

namespace mirvo {

/// Fills `passed` and `isolated` of the side.
ScorePair EvaluatePawns(EvalRecord& record, int side);

}  // namespace mirvo
