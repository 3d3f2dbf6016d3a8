// The printed table of evaluation terms, for the run mode that shows it.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/eval_record.h"

namespace mirvo {

/// Prints the term rows in White's view and the total (`score`, in the view
/// of the record's side) to the console only. `phase` is 0 in a bare end game
/// and 1 with all pieces. The amounts that have no row, such as threats and
/// passed pawns, are part of the total only. May exchange the record's rows.
void PrintEvalReport(EvalRecord& record, std::int32_t score, float phase);

/// Evaluates and prints the report, if there is one: neither after a hit of the
/// evaluation cache nor with insufficient material are the terms computed.
std::int32_t EvaluateWithReport(EvalRecord& record, Board& board, int side);

}  // namespace mirvo
