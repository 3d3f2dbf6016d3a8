// The static evaluation of a position.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/eval_record.h"

namespace mirvo {

/// Static score in centipawns for `side`. Uses the evaluation and pawn caches. `record`
/// is scratch space; after a hit in the evaluation cache its contents mean nothing.
std::int32_t Evaluate(EvalRecord& record, Board& board, int side);

/// Share of the middle game in the score: 0 with kings and pawns only, 1 with all
/// pieces, more with extra queens. Needs the material of both sides.
float PhaseOf(const EvalRecord& record);

}  // namespace mirvo
