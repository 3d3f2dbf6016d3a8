// The static evaluation of a position.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/eval_record.h"

namespace mirvo {

/// Static score in centipawns in the view of `side`. Uses the evaluation and
/// pawn caches; prints the term report when the run mode is "eval". `record`
/// is scratch space of the caller; after a hit of the evaluation cache it holds
/// nothing of use.
std::int32_t Evaluate(EvalRecord& record, Board& board, int side);

/// Builds KingDangerTable; called once by start-up after the board tables.
void BuildKingDangerTable();

}  // namespace mirvo
