// The printed table of evaluation terms, for the run mode that shows it.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/eval_record.h"

namespace mirvo {

/// Prints the term rows from White's point of view and the total (`score`, for the
/// record's side) to the console only. `phase` is 0 with kings and pawns only and 1 with
/// all pieces. Terms without a row, such as threats and passed pawns, are part of the
/// total only. May swap the record's rows.
void PrintEvalReport(EvalRecord& record, std::int32_t score, float phase);

/// Evaluates and prints the report, if the terms are computed: they are not after a hit
/// in the evaluation cache or with insufficient material.
std::int32_t EvaluateWithReport(EvalRecord& record, Board& board, int side);

}  // namespace mirvo
