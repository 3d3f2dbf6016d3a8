// Threats of one side.
#pragma once

#include <cstdint>

#include "eval/eval_record.h"

namespace mirvo {

/// Enemy pieces under attack that no enemy pawn defends, each pair of attacker
/// kind and victim kind once; centipawns of both halves. The term report has no
/// row for them. Needs the attack sets of both sides.
std::int32_t EvaluateThreats(const EvalRecord& record, int side);

}  // namespace mirvo
