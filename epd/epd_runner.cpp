#include "epd/epd_runner.h"

#include <algorithm>
#include <memory>
#include <string>

#include "board/display.h"
#include "board/notation.h"
#include "board/san.h"
#include "epd/epd_reader.h"
#include "epd/epd_score.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"
#include "search/iterate.h"
#include "search/move_order.h"
#include "search/search_flags.h"
#include "search/search_stats.h"
#include "shell/base/output.h"
#include "shell/base/text.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

/// The results of a run so far.
struct SuiteTotals {
  std::int32_t analysed = 0;  // positions so far, including skipped ones
  std::int32_t correct = 0;
  std::int64_t points = 0;
};

/// Clears everything that the search keeps from earlier positions, so that a
/// result does not depend on a position's place in the suite.
void ClearSearchMemory() {
  ClearHistory();
  ClearKillers();
  ClearPreviousPv();
  HashClear(EvalHashTable);
  HashClear(PawnHashTable);
  HashResetSearch(TranspositionTable);
  ResetHashCounters();
}

void PrintAnswer(Move answer) {
  char text[moveTextCapacity] = "0000";
  if (answer != noMove) MoveToSan(answer, text);
  Output(output, "%s - ", text);
}

void PrintBestMoves(const SuitePosition& position) {
  std::string texts;
  for (const BestMove& best : position.bestMoves) {
    if (!texts.empty()) texts += ", ";
    texts += best.text;
  }
  Output(output, "(%s) - ", texts.c_str());
}

/// Searches one position from empty tables and prints its result line without the
/// totals. `number` counts the positions of the file from 1.
Verdict AnalysePosition(const SuitePosition& position, std::int32_t number, Board& board) {
  const bool quiet = engineConfig.Quiet;
  SetUpSuitePosition(position, board);
  PrintBoard(board, BoardLayout::wide, quiet);
  ClearSearchMemory();
  if (quiet) Output(output, "Pos %d ", number);
  SearchRecord record = PrepareSearch(board);
  record.limits.reportStyle = ReportStyle::console;
  const Move answer = Think(record).best;
  PrintAnswer(answer);
  const Verdict verdict = JudgeAnswer(position, answer);
  Output(output, verdict.correct ? "Correct" : "Wrong");
  PrintBestMoves(position);
  return verdict;
}

void AddVerdict(const Verdict& verdict, SuiteTotals& totals) {
  totals.correct += verdict.correct ? 1 : 0;
  totals.points += verdict.points;
}

void PrintTotals(const SuiteTotals& totals, std::int32_t count) {
  Output(output, "Analyzed %d/%d - Correct %d/%d (%.2f%% - %d)\n", totals.analysed, count,
         totals.correct, totals.analysed, totals.correct * 100.0 / totals.analysed,
         Saturate(totals.points));
}

/// From now on searches neither probe the book nor poll the input.
void DisableBookAndInput() {
  searchFlags.BookInUse = false;
  searchFlags.NoInputPolling = true;
}

}  // namespace

void RunSuite(const char* file, std::int32_t first, std::int32_t count) {
  DisableBookAndInput();
  Suite suite;
  if (!ReadSuite(file, suite)) {
    Output(output, "File \"%s\" not found.\n", file);
    return;
  }
  RunSuite(suite, file, first, count);
}

void RunSuite(const Suite& suite, const char* name, std::int32_t first, std::int32_t count) {
  DisableBookAndInput();
  const auto nRead = static_cast<std::int32_t>(suite.size());
  count = std::min(count, nRead);
  Output(output, "Analyzing %s starting at position %d for %d position(s)\n", name, first, count);

  HashPrefaultAll();
  SuiteTotals totals;
  const auto board = std::make_unique<Board>();
  while (totals.analysed < count) {
    const std::int64_t index = std::int64_t{first} + totals.analysed++;
    if (index < 0 || index >= nRead) continue;
    const SuitePosition& position = suite[static_cast<std::size_t>(index)];
    AddVerdict(AnalysePosition(position, static_cast<std::int32_t>(index) + 1, *board), totals);
    PrintTotals(totals, count);
  }

  PrintSearchStats();
  PrintToConsole("Final Score = %d\n", Saturate(totals.points));
  Output(output, "Done.\n");
}

}  // namespace mirvo
