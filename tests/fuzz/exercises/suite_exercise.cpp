// EPD suites: reading, judging answers, and a run over the first positions.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "board/bb_move_generator.h"
#include "epd/epd_reader.h"
#include "epd/epd_runner.h"
#include "epd/epd_score.h"
#include "shell/config/config.h"
#include "tests/fuzz/exercises/board_checks.h"
#include "tests/fuzz/exercises/engine_kit.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

constexpr std::size_t nPositionsChecked = 6;
constexpr std::int32_t nPositionsAnalysed = 2;

bool TextsEnd(const SuitePosition& position) {
  return std::all_of(position.bestMoves.begin(), position.bestMoves.end(), [](const BestMove& b) {
    return std::memchr(b.text, 0, sizeof b.text) != nullptr;
  });
}

BrokenPromise CheckVerdicts(const SuitePosition& position, Board& board) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (std::int32_t i = 0; i < generator.count; ++i) {
    const Verdict verdict = JudgeAnswer(position, generator.moves[i]);
    if (verdict.correct && verdict.points > pointLimit) return "an answer earns too many points";
  }
  return JudgeAnswer(position, noMove).correct ? "no move is called correct" : nullptr;
}

BrokenPromise CheckSuite(const Suite& suite) {
  if (suite.size() > static_cast<std::size_t>(suiteCapacity)) return "a suite is too long";
  static Board board;
  const std::size_t nChecked = std::min(suite.size(), nPositionsChecked);
  for (std::size_t i = 0; i < nChecked; ++i) {
    if (!TextsEnd(suite[i])) return "the text of a best move has no end";
    SetUpSuitePosition(suite[i], board);
    if (const BrokenPromise broken = CheckPosition(board)) return broken;
    if (const BrokenPromise broken = CheckVerdicts(suite[i], board)) return broken;
  }
  return nullptr;
}

}  // namespace

BrokenPromise ExerciseSuite(std::string_view input) {
  FreshEngine();
  const PrintedText printed;
  const Suite suite = ParseSuite(input);
  if (const BrokenPromise broken = CheckSuite(suite)) return broken;
  LimitSearches(engineConfig, input);
  RunSuite(suite, "suite.epd", 0, nPositionsAnalysed);
  if (CountLines(printed.Text(), "Done.") != 1) return "a suite has no end";
  return nullptr;
}

}  // namespace mirvo
