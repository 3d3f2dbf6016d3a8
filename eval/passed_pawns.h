// Passed pawns of one side.
#pragma once

#include <cstdint>

#include "eval/eval_record.h"
#include "eval/score.h"

namespace mirvo {

/// Needs the side's passed set and both union attack sets.
ScorePair EvaluatePassedPawns(EvalRecord& record, int side);

}  // namespace mirvo
