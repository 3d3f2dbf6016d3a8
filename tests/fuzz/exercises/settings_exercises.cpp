// Settings from config.txt and from the command line.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "board/perft.h"
#include "protocol/game_board.h"
#include "shell/base/output.h"
#include "shell/base/process.h"
#include "shell/command_line.h"
#include "shell/config/config.h"
#include "shell/config/config_file.h"
#include "shell/run_modes.h"
#include "tests/fuzz/exercises/board_checks.h"
#include "tests/fuzz/exercises/engine_kit.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

/// The heading and ten settings.
constexpr int reportLines = 11;

/// Most words: more show nothing new, and each run of a tool reads files.
constexpr std::size_t maxWords = 24;

/// A book of one position with two moves, and a truncated game.
constexpr char smallBook[] =
    "\x46\x3B\x96\x18\x16\x91\xFC\x9C\x03\x1C\x00\x0A\x00\x00\x00\x00"
    "\x46\x3B\x96\x18\x16\x91\xFC\x9C\x02\xDB\x00\x05\x00\x00\x00\x00";
constexpr char smallGame[] = "[Result \"1-0\"]\n1. e4 e5 2. Nf3 Nc6 1-0\n";
constexpr char smallSuite[] = "4k3/8/8/8/8/8/8/R3K3 w - - bm Ra8+;\n";

template <std::size_t size>
bool Ends(const char (&text)[size]) {
  return std::memchr(text, 0, size) != nullptr;
}

bool TextsEnd(const EngineConfig& config) {
  return Ends(config.AnalyzeFile) && Ends(config.BookName) && Ends(config.CmdLineBookName) &&
         Ends(bookFileOptionText);
}

/// Settings that no key names.
bool OthersUntouched(const EngineConfig& now, const EngineConfig& before) {
  return now.RunMode == before.RunMode && now.PerftDepth == before.PerftDepth &&
         now.AnalyzeFirst == before.AnalyzeFirst && now.AnalyzeCount == before.AnalyzeCount &&
         now.Quiet == before.Quiet && now.ToolRunOnly == before.ToolRunOnly &&
         now.CmdLineBook == before.CmdLineBook && now.AnalyzeFile[0] == '\0' &&
         now.CmdLineBookName[0] == '\0' &&
         SamePosition(now.CommandLineBoard, before.CommandLineBoard);
}

bool SameSettings(const EngineConfig& a, const EngineConfig& b) {
  return a.DepthSearch == b.DepthSearch && a.UseOpeningBook == b.UseOpeningBook &&
         a.InfiniteThinkingTime == b.InfiniteThinkingTime && a.PawnHashSize == b.PawnHashSize &&
         a.EvalHashSize == b.EvalHashSize && a.TTHashSize == b.TTHashSize &&
         a.AspirationWindow == b.AspirationWindow && a.FixedTimePerMove == b.FixedTimePerMove &&
         a.UseMP == b.UseMP && a.NumberThreads == b.NumberThreads &&
         a.StartIDDepth == b.StartIDDepth && a.LoggingMode == b.LoggingMode &&
         std::strcmp(a.BookName, b.BookName) == 0 && a.Contempt == b.Contempt &&
         a.MoveOverhead == b.MoveOverhead && a.MaxNumExtPerDepth == b.MaxNumExtPerDepth &&
         a.Ponder == b.Ponder;
}

std::vector<std::string> LinesOf(std::string_view input) {
  std::vector<std::string> lines;
  while (lines.size() < maxWords) {
    const std::size_t end = input.find('\n');
    const std::string_view line = input.substr(0, end);
    lines.emplace_back(line.substr(0, line.find('\0')));
    if (end == std::string_view::npos) break;
    input.remove_prefix(end + 1);
  }
  return lines;
}

/// Replaces a file that the input names by one in the scratch folder. The name
/// still decides: a good file, a bad one, none, or a folder.
std::string Harmless(const std::string& name) {
  switch (name.empty() ? 0 : static_cast<unsigned char>(name.back()) % 6) {
    case 0:
      return WriteScratchFile("games.pgn", smallGame);
    case 1:
      return WriteScratchFile("book.bk", std::string_view(smallBook, sizeof smallBook - 1));
    case 2:
      return WriteScratchFile("suite.epd", smallSuite);
    case 3:
      return ScratchFolder();
    case 4:
      return WriteScratchFile("bytes", name);
    default:
      return ScratchFolder() + "/missing/file";
  }
}

/// Positions of an option's arguments that are names of files.
struct FileWords {
  const char* option;
  std::vector<std::size_t> places;  // behind the option
};

/// Replaces every word that may be read as the name of a file. Replacing one too
/// many does no harm.
void ReplaceFiles(std::vector<std::string>& words) {
  static const std::vector<FileWords> fileWords = {
      {"-createbook", {1, 4}}, {"-mergebooks", {1, 2, 3}}, {"-listmoves", {1}},
      {"-bookstats", {1}},     {"-analyze", {1}},          {"--a", {1}}};
  for (std::size_t i = 0; i < words.size(); ++i) {
    for (const FileWords& option : fileWords) {
      if (words[i] != option.option) continue;
      for (const std::size_t place : option.places) {
        if (i + place < words.size()) words[i + place] = Harmless(words[i + place]);
      }
    }
  }
}

/// Runs the chosen mode if it ends soon.
BrokenPromise RunChosenMode(std::string_view input) {
  EngineConfig& config = engineConfig;
  if (config.PerftDepth > maxPerftDepth) return "perft is asked for too many depths";
  config.PerftDepth = std::min(config.PerftDepth, 1);
  config.AnalyzeCount = std::min(config.AnalyzeCount, 2);
  LimitSearches(config, input);
  config.Quiet = true;
  if (config.RunMode == RunModeCode::engine && !config.ToolRunOnly) return nullptr;
  return Run(config) == 0 ? nullptr : "a run mode failed";
}

}  // namespace

BrokenPromise ExerciseConfigFile(std::string_view input) {
  FreshEngine();
  const PrintedText printed;
  static EngineConfig before;
  static EngineConfig once;
  std::construct_at(&before, engineConfig);
  const std::string path = WriteScratchFile("config.txt", input);
  ReadConfigFile(engineConfig, path.c_str());
  if (!TextsEnd(engineConfig)) return "a text of the settings has no end";
  if (!OthersUntouched(engineConfig, before)) return "config.txt changed what is not its own";
  PrintConfig(engineConfig);
  if (CountLines(printed.Text(), "") != reportLines) return "the report is not eleven lines";
  std::construct_at(&once, engineConfig);
  ReadConfigFile(engineConfig, path.c_str());
  if (!SameSettings(once, engineConfig)) return "reading config.txt again changes it";
  ApplyConfigToken(engineConfig, std::string(input).c_str());
  return TextsEnd(engineConfig) ? nullptr : "a text of the settings has no end";
}

BrokenPromise ExerciseCommandLine(std::string_view input) {
  FreshEngine();
  const Silence silence;
  std::vector<std::string> words = LinesOf(input);
  ReplaceFiles(words);
  std::vector<const char*> arguments = {"mirvo"};
  for (const std::string& word : words) arguments.push_back(word.c_str());
  arguments.push_back(nullptr);
  ParseCommandLine(engineConfig, static_cast<int>(arguments.size()) - 1, arguments.data());
  UndoEndWithClosedPipe();
  if (!TextsEnd(engineConfig)) return "a text of the settings has no end";
  if (const BrokenPromise broken = RunChosenMode(input)) return broken;
  return CheckPosition(engineConfig.CommandLineBoard);
}

}  // namespace mirvo
