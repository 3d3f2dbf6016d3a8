#include "shell/command_line.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "board/fen.h"
#include "board/perft.h"
#include "book/book_builder.h"
#include "book/book_file.h"
#include "book/book_probe.h"
#include "book/opening_book.h"
#include "epd/epd_reader.h"
#include "shell/base/process.h"
#include "shell/base/text.h"

namespace mirvo {

namespace {

/// `AnalyzeCount` if only a file is given: a number that no suite exceeds.
constexpr std::int32_t wholeSuite = 100000;
static_assert(wholeSuite >= suiteCapacity);

constexpr std::int32_t millisecondsPerSecond = 1000;

/// The words not read yet.
struct Arguments {
  int count;
  const char* const* words;
  int next;

  bool HasMore() const { return next < count; }
  /// The next word; the empty text when there is none.
  const char* Take() {
    if (!HasMore()) return "";
    const char* const word = words[next++];
    return word != nullptr ? word : "";
  }
};

/// Three words: placement, side to move, castling rights.
void TakePosition(Arguments& arguments, Board& board) {
  const char* const placement = arguments.Take();
  const char* const side = arguments.Take();
  const char* const castling = arguments.Take();
  BeginFromFen(placement, side, castling, board);
}

void TakePerft(EngineConfig& config, Arguments& arguments) {
  config.RunMode = RunModeCode::perft;
  // There are counters for ten depths; no machine gets deeper in useful time.
  config.PerftDepth = std::min(ReadDecimal(arguments.Take()), maxPerftDepth);
  // Whatever follows the depth is a position, another option included.
  if (arguments.HasMore()) {
    TakePosition(arguments, config.CommandLineBoard);
  } else {
    BeginFromStart(config.CommandLineBoard);
  }
}

void TakeTest(EngineConfig& config, Arguments& arguments) {
  config.RunMode = RunModeCode::test;
  if (arguments.HasMore()) TakePosition(arguments, config.CommandLineBoard);
}

void TakeAnalyze(EngineConfig& config, Arguments& arguments) {
  config.RunMode = RunModeCode::analyze;
  CopyText(config.AnalyzeFile, sizeof config.AnalyzeFile, arguments.Take());
  config.AnalyzeFirst = 0;
  config.AnalyzeCount = wholeSuite;
  if (arguments.HasMore()) {
    config.AnalyzeFirst = ReadDecimal(arguments.Take());
    config.AnalyzeCount = ReadDecimal(arguments.Take());
  }
}

void TakeQuiet(EngineConfig& config, Arguments&) { config.Quiet = true; }

void TakeEval(EngineConfig& config, Arguments& arguments) {
  config.RunMode = RunModeCode::eval;
  TakePosition(arguments, config.CommandLineBoard);
}

void TakeUseBook(EngineConfig& config, Arguments& arguments) {
  // Stored only: the engine plays from the book that config.txt names.
  config.CmdLineBook = 1;
  CopyText(config.CmdLineBookName, sizeof config.CmdLineBookName, arguments.Take());
}

void RunCreateBook(EngineConfig& config, Arguments& arguments) {
  config.ToolRunOnly = true;
  config.RunMode = RunModeCode::createBook;
  const char* const games = arguments.Take();
  const std::int32_t maxPlies = ReadDecimal(arguments.Take());
  const std::int32_t minHits = ReadDecimal(arguments.Take());
  const char* const outPath = arguments.Take();
  if (CreateBook(openingBook, games, maxPlies, minHits) > 0) SaveBook(openingBook, outPath);
}

void RunMergeBooks(EngineConfig& config, Arguments& arguments) {
  config.ToolRunOnly = true;
  const char* const first = arguments.Take();
  const char* const second = arguments.Take();
  const char* const outPath = arguments.Take();
  MergeBooks(openingBook, first, second, outPath);
}

void RunListMoves(EngineConfig& config, Arguments& arguments) {
  config.ToolRunOnly = true;
  LoadBook(openingBook, arguments.Take(), true);
  TakePosition(arguments, config.CommandLineBoard);
  Move chosen = noMove;
  ProbeBook(openingBook, config.CommandLineBoard, chosen);
}

void RunBookStats(EngineConfig& config, Arguments& arguments) {
  config.ToolRunOnly = true;
  LoadBook(openingBook, arguments.Take(), true);
  PrintBookStats(openingBook);
}

void TakeTime(EngineConfig& config, Arguments& arguments) {
  const std::int32_t seconds = ReadDecimal(arguments.Take());
  if (seconds == 0) {
    config.InfiniteThinkingTime = 1;
  } else {
    config.FixedTimePerMove = MultiplySaturated(seconds, millisecondsPerSecond);
  }
}

void TakeDepth(EngineConfig& config, Arguments& arguments) {
  config.DepthSearch = ReadDecimal(arguments.Take());
  // Only the depth limits the search.
  config.InfiniteThinkingTime = 1;
}

/// What kind of run an option asks for.
enum class OptionUse {
  setting,  // changes a setting; the program still runs as an engine
  task,     // performs one task and exits
};

struct CommandLineOption {
  const char* name;
  const char* alias;  // null when there is only one spelling
  OptionUse use;
  void (*apply)(EngineConfig& config, Arguments& arguments);
};

constexpr CommandLineOption options[] = {
    {"-perft", "--p", OptionUse::task, TakePerft},
    {"-test", nullptr, OptionUse::task, TakeTest},
    {"-analyze", "--a", OptionUse::task, TakeAnalyze},
    {"-quiet", "--q", OptionUse::setting, TakeQuiet},
    {"-eval", nullptr, OptionUse::task, TakeEval},
    {"-usebook", nullptr, OptionUse::setting, TakeUseBook},
    {"-createbook", nullptr, OptionUse::task, RunCreateBook},
    {"-mergebooks", nullptr, OptionUse::task, RunMergeBooks},
    {"-listmoves", nullptr, OptionUse::task, RunListMoves},
    {"-bookstats", nullptr, OptionUse::task, RunBookStats},
    {"-time", "--t", OptionUse::setting, TakeTime},
    {"-depth", "--d", OptionUse::setting, TakeDepth},
};

bool Names(const CommandLineOption& option, const char* word) {
  return std::strcmp(word, option.name) == 0 ||
         (option.alias != nullptr && std::strcmp(word, option.alias) == 0);
}

}  // namespace

void ParseCommandLine(EngineConfig& config, int argc, const char* const* argv) {
  Arguments arguments{argc, argv, 0};
  // This includes the program's own name, which matches no option.
  while (arguments.HasMore()) {
    const char* const word = arguments.Take();
    const auto* const option =
        std::find_if(std::begin(options), std::end(options),
                     [word](const CommandLineOption& candidate) { return Names(candidate, word); });
    if (option != std::end(options)) {
      if (option->use == OptionUse::task) EndWithClosedPipe();
      option->apply(config, arguments);
    }
  }
}

}  // namespace mirvo
