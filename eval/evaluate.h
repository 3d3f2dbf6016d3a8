// The static evaluation of a position.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/eval_record.h"

namespace mirvo {

/// Static score in centipawns in the view of `side`. Uses the evaluation and
/// pawn caches. `record` is scratch space of the caller; after a hit of the
/// evaluation cache it holds nothing of use.
std::int32_t Evaluate(EvalRecord& record, Board& board, int side);

/// Share of the middle game in the score: 0 in a bare end game, 1 with all
/// pieces, more with extra queens. Needs the material of both sides.
float PhaseOf(const EvalRecord& record);

}  // namespace mirvo
