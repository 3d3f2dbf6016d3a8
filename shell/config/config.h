// The settings record. Built with its defaults before main, then written by
// config.txt and the command line. While the program runs, front ends change
// options, and StoreTimeLimits stores the time of each search.
#pragma once

#include <cstdint>

#include "board/board.h"

namespace mirvo {

enum class RunModeCode : std::int32_t {
  engine = 0,
  analyze = 1,
  test = 2,
  perft = 3,
  eval = 4,
  createBook = 5,
};

inline constexpr int analyzeFileCapacity = 128;
inline constexpr int bookNameCapacity = 64;

/// `FixedTimePerMove` when no time is set.
inline constexpr std::int32_t noFixedTime = -1;

struct EngineConfig {
  RunModeCode RunMode = RunModeCode::engine;
  std::int32_t PerftDepth = 0;
  Board CommandLineBoard;  // position of the command-line modes
  char AnalyzeFile[analyzeFileCapacity] = "";
  std::int32_t AnalyzeFirst = 0;
  std::int32_t AnalyzeCount = 0;
  bool Quiet = false;  // suppresses boards, statistics and search lines
  std::int32_t DepthSearch = 40;
  std::int32_t UseOpeningBook = 1;
  std::int32_t InfiniteThinkingTime = 0;        // non-zero: no clock
  std::int32_t PawnHashSize = 30;               // MB
  std::int32_t EvalHashSize = 100;              // MB
  std::int32_t TTHashSize = 100;                // MB
  std::int32_t AspirationWindow = 200;          // centipawns
  std::int32_t FixedTimePerMove = noFixedTime;  // ms
  std::int32_t UseMP = 0;                       // part of the file format only
  std::int32_t NumberThreads = 2;               // part of the file format and report only
  std::int32_t StartIDDepth = 1;
  std::int32_t LoggingMode = 0;  // non-zero: finished XBoard games are saved
  char BookName[bookNameCapacity] = "book.bk";
  std::int32_t Contempt = 0;  // stored only
  std::int32_t CmdLineBook = 0;
  char CmdLineBookName[bookNameCapacity] = "";  // stored only
  std::int32_t MaxNumExtPerDepth = 100;         // percent of the depth
  std::int32_t Ponder = 1;
  bool ToolRunOnly = false;
  std::int32_t MoveOverhead = 0;  // ms that a timed search leaves on its clock; 0: none
};

/// Owner: config.cpp. Writers: start-up, the options of the front ends, and
/// StoreTimeLimits for the two fields of a search's time.
extern EngineConfig engineConfig;

/// Default and current text of the "Book File" option; config.txt's Book key
/// replaces it. Owner: config.cpp. Writer: config_file.cpp.
extern char bookFileOptionText[bookNameCapacity];

}  // namespace mirvo
