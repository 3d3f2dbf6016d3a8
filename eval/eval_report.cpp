#include "eval/eval_report.h"

#include <utility>

#include "eval/evaluate.h"
#include "eval/material.h"
#include "search/hash/hash_table.h"
#include "shell/base/output.h"

namespace mirvo {

namespace {

constexpr int nReportRows = 8;
constexpr const char* rowNames[nReportRows] = {"material", "pawns",  "knights", "bishops",
                                               "rooks",    "queens", "kings",   "devel"};

constexpr double pawnsPerCentipawn = 0.01;

double InPawns(std::int32_t centipawns) { return centipawns * pawnsPerCentipawn; }

}  // namespace

void PrintEvalReport(EvalRecord& record, std::int32_t score, float phase) {
  if (record.side == black) std::swap(record.terms[0], record.terms[1]);
  for (int row = 0; row < nReportRows; ++row) {
    const ScorePair whites = record.terms[0][row];
    const ScorePair blacks = record.terms[1][row];
    const float net = static_cast<float>(whites.eg - blacks.eg) * (1.0F - phase) +
                      static_cast<float>(whites.mg - blacks.mg) * phase;
    // Black's numbers are negated as integers, so that nothing prints as -0.00.
    PrintToConsole("%10s:\t%4.2f\t|\t%4.2f\t%4.2f\t|\t%4.2f\t%4.2f\t|\n", rowNames[row],
                   net * pawnsPerCentipawn, InPawns(whites.mg), InPawns(whites.eg),
                   InPawns(-blacks.mg), InPawns(-blacks.eg));
  }
  PrintToConsole("Total:\t%+3.2f\n\n", InPawns(score));
}

std::int32_t EvaluateWithReport(EvalRecord& record, Board& board, int side) {
  const std::uint64_t key = board.positionKey;
  const bool isCached = HashHolds(EvalHashTable, HashIndex(EvalHashTable, key), key);
  const std::int32_t score = Evaluate(record, board, side);
  if (!isCached && !InsufficientMaterial(board)) PrintEvalReport(record, score, PhaseOf(record));
  return score;
}

}  // namespace mirvo
