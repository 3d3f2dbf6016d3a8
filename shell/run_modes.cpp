#include "shell/run_modes.h"

#include "board/display.h"
#include "board/perft.h"
#include "book/book_file.h"
#include "book/opening_book.h"
#include "epd/epd_runner.h"
#include "eval/eval_report.h"
#include "protocol/dispatcher.h"
#include "search/search_flags.h"
#include "shell/base/output.h"
#include "shell/base/protocol_mode.h"

namespace mirvo {

namespace {

[[noreturn]] void RunEngine(EngineConfig& config) {
  LoadEngineBook(config);
  RunIdleLoop(protocolMode);
}

void RunPerftMode(EngineConfig& config) {
  Output(output, "Performing -perft %d\n", config.PerftDepth);
  PrintBoard(config.CommandLineBoard, BoardLayout::compact, config.Quiet);
  RunPerft(config.CommandLineBoard, config.PerftDepth);
  for (int depth = 1; depth <= config.PerftDepth; ++depth) {
    Output(output, "%u %12llu\n", static_cast<unsigned>(depth),
           static_cast<unsigned long long>(PerftCountAtDepth(depth)));
  }
}

void RunEval(EngineConfig& config) {
  Board& board = config.CommandLineBoard;
  PrintBoard(board, BoardLayout::wide, config.Quiet);
  EvalRecord record{};
  const std::int32_t score = EvaluateWithReport(record, board, board.sideToMove);
  Output(output, "Full eval: %d\n", score);
}

}  // namespace

void LoadEngineBook(EngineConfig& config) {
  if (config.UseOpeningBook == 0 || LoadBook(openingBook, config.BookName, true)) return;
  config.UseOpeningBook = 0;
  searchFlags.BookInUse = false;
}

int Run(EngineConfig& config) {
  // Book tools ran while the command line was read.
  if (config.ToolRunOnly) return 0;
  switch (config.RunMode) {
    case RunModeCode::engine:
      RunEngine(config);
    case RunModeCode::analyze:
      RunSuite(config.AnalyzeFile, config.AnalyzeFirst, config.AnalyzeCount);
      break;
    case RunModeCode::perft:
      RunPerftMode(config);
      break;
    case RunModeCode::eval:
      RunEval(config);
      break;
    case RunModeCode::test:
      // The position was set up while the command line was read; that is all.
    case RunModeCode::createBook:
      break;
  }
  return 0;
}

}  // namespace mirvo
