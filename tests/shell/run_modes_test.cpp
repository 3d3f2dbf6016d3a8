#include "shell/run_modes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "board/attack_tables.h"
#include "board/fen.h"
#include "board/perft.h"
#include "book/opening_book.h"
#include "eval/king.h"
#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "search/search_flags.h"
#include "shell/base/text.h"
#include "tests/shell/temporary_folder.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

class RunModes : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    InitAttackTables();
    BuildKingDangerTable();
    for (HashTable* const table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
      table->size = 1;
      HashAllocate(*table);
    }
  }
  static void TearDownTestSuite() {
    for (HashTable* const table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
      HashRelease(*table);
    }
  }
  // The evaluation reads the mode from the global settings.
  RunModes() : config(engineConfig) { std::construct_at(&config); }
  ~RunModes() override { std::construct_at(&config); }

  /// Runs the mode; returns what was printed. Every mode but the engine's
  /// ends with status 0.
  std::string RunMode() {
    CaptureStdout();
    const int status = mirvo::Run(config);
    std::string text = GetCapturedStdout();
    EXPECT_EQ(status, 0);
    return text;
  }

  TemporaryFolder folder;
  EngineConfig& config;
};

// The start position with the move e2e4.
constexpr unsigned char smallBook[] = {0x46, 0x3b, 0x96, 0x18, 0x16, 0x91, 0xfc, 0x9c,
                                       0x03, 0x1c, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00};

class EngineBook : public RunModes {
 protected:
  EngineBook() {
    CreateOpeningBook(openingBook);
    searchFlags.BookInUse = true;
    std::FILE* const file = std::fopen("small.bk", "wb");
    std::fwrite(smallBook, 1, sizeof smallBook, file);
    std::fclose(file);
  }
  ~EngineBook() override {
    DestroyOpeningBook(openingBook);
    searchFlags = SearchFlags{};
  }

  std::string Load(const char* name) {
    CopyText(config.BookName, sizeof config.BookName, name);
    CaptureStdout();
    LoadEngineBook(config);
    return GetCapturedStdout();
  }
};

TEST_F(EngineBook, IsLoadedByItsName) {
  Load("small.bk");
  EXPECT_EQ(openingBook.count, 1);
  EXPECT_TRUE(searchFlags.BookInUse);
  EXPECT_EQ(config.UseOpeningBook, 1);
}

// Leaving the book doubles a move's time, so a game without a book must not start
// in it.
TEST_F(EngineBook, IsSwitchedOffSilentlyWhenItsFileIsMissing) {
  EXPECT_EQ(Load("missing.bk"), "");
  EXPECT_FALSE(searchFlags.BookInUse);
  EXPECT_EQ(config.UseOpeningBook, 0);
}

TEST_F(EngineBook, IsNotLookedForWhenTheSettingsWantNone) {
  config.UseOpeningBook = 0;
  EXPECT_EQ(Load("small.bk"), "");
  EXPECT_EQ(openingBook.count, 0);
}

// Any setting but 0 loads it; only 1 plays from it.
TEST_F(EngineBook, IsLoadedForAnySettingButZero) {
  config.UseOpeningBook = 2;
  Load("small.bk");
  EXPECT_EQ(openingBook.count, 1);
}

TEST_F(RunModes, NothingRunsAfterATool) {
  config.ToolRunOnly = true;
  for (const RunModeCode mode :
       {RunModeCode::engine, RunModeCode::analyze, RunModeCode::perft, RunModeCode::eval}) {
    config.RunMode = mode;
    EXPECT_EQ(RunMode(), "");
  }
}

TEST_F(RunModes, TestAndUnknownModesDoNothing) {
  for (const int mode : {2, 5, 6, -1}) {
    config.RunMode = static_cast<RunModeCode>(mode);
    EXPECT_EQ(RunMode(), "") << mode;
  }
}

TEST_F(RunModes, AMissingBookIsNotInUse) {
  std::snprintf(config.BookName, sizeof(config.BookName), "missing.bk");
  searchFlags.BookInUse = true;
  CaptureStdout();
  LoadEngineBook(config);
  GetCapturedStdout();
  EXPECT_FALSE(searchFlags.BookInUse);
}

TEST_F(RunModes, ABookThatIsThereStaysInUse) {
  WriteFile("own.bk", std::string("\x46\x3B\x96\x18\x16\x91\xFC\x9C\x03\x1C\x00\x01\0\0\0\0", 16));
  std::snprintf(config.BookName, sizeof(config.BookName), "own.bk");
  ASSERT_TRUE(CreateOpeningBook(openingBook));
  searchFlags.BookInUse = true;
  CaptureStdout();
  LoadEngineBook(config);
  GetCapturedStdout();
  EXPECT_TRUE(searchFlags.BookInUse);
  EXPECT_EQ(openingBook.count, 1);
  DestroyOpeningBook(openingBook);
}

TEST_F(RunModes, NoBookIsReadWhenTheSettingsWantNone) {
  config.UseOpeningBook = 0;
  std::snprintf(config.BookName, sizeof(config.BookName), "missing.bk");
  searchFlags.BookInUse = false;
  CaptureStdout();
  LoadEngineBook(config);
  EXPECT_EQ(GetCapturedStdout(), "");
}

constexpr char initialDiagram[] =
    "\n"
    " |abcdefgh\n"
    "-----------\n"
    "8|rnbqkbnr|\n"
    "7|pppppppp|\n"
    "6|........|\n"
    "5|........|\n"
    "4|........|\n"
    "3|........|\n"
    "2|PPPPPPPP|\n"
    "1|RNBQKBNR|\n"
    "-----------\n"
    "\n";

TEST_F(RunModes, PerftPrintsBoardAndCounts) {
  config.RunMode = RunModeCode::perft;
  config.PerftDepth = 3;
  const std::string text = RunMode();
  const std::string header = std::string("Performing -perft 3\n") + initialDiagram + "Time = ";
  EXPECT_EQ(text.substr(0, header.size()), header);
  const std::string tail = "Splits = 0\n1           20\n2          400\n3         8902\n";
  ASSERT_GT(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST_F(RunModes, PerftBelowDepthOnePrintsNoCounts) {
  for (const int depth : {0, -1}) {
    config.RunMode = RunModeCode::perft;
    config.PerftDepth = depth;
    const std::string text = RunMode();
    EXPECT_EQ(text.substr(0, text.find('\n')), "Performing -perft " + std::to_string(depth));
    const std::string tail = "kNodes/sec = 0.00\nSplits = 0\n";
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  }
}

TEST_F(RunModes, PerftOfAMatedSideCountsNothing) {
  config.RunMode = RunModeCode::perft;
  config.PerftDepth = 2;
  BeginFromFen("7k/6Q1/6K1/8/8/8/8/8", "b", "-", config.CommandLineBoard);
  const std::string text = RunMode();
  const std::string tail = "Splits = 0\n1            0\n2            0\n";
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST_F(RunModes, QuietPerftPrintsNoBoard) {
  config.RunMode = RunModeCode::perft;
  config.PerftDepth = 1;
  config.Quiet = true;
  const std::string text = RunMode();
  const std::string header = "Performing -perft 1\nTime = ";
  EXPECT_EQ(text.substr(0, header.size()), header);
}

TEST_F(RunModes, EvalPrintsBoardReportAndScore) {
  config.RunMode = RunModeCode::eval;
  config.CommandLineBoard.sideToMove = white;
  const std::string text = RunMode();
  const std::string header = "\n |a b c d e f g h \n-------------------\n8|r n b q k b n r \n |\n";
  EXPECT_EQ(text.substr(0, header.size()), header);
  EXPECT_NE(text.find("\nFull eval: "), std::string::npos);
  EXPECT_EQ(text.back(), '\n');
}

TEST_F(RunModes, EvalTakesTheViewOfTheSideToMove) {
  // A rook up is good for White and as bad for Black.
  for (const char* const side : {"w", "b"}) {
    config.RunMode = RunModeCode::eval;
    config.Quiet = true;
    BeginFromFen("4k3/pppp4/8/8/8/8/PPPP4/R3K3", side, "-", config.CommandLineBoard);
    const std::string text = RunMode();
    const std::string label = "Full eval: ";
    const int score = std::stoi(text.substr(text.rfind(label) + label.size()));
    EXPECT_TRUE(side[0] == 'w' ? score > 300 : score < -300) << score;
  }
}

TEST_F(RunModes, AnalyzeReportsAMissingFile) {
  config.RunMode = RunModeCode::analyze;
  config.AnalyzeCount = 100000;
  CopyText(config.AnalyzeFile, sizeof config.AnalyzeFile, "missing.epd");
  EXPECT_EQ(RunMode(), "File \"missing.epd\" not found.\n");
}

}  // namespace
}  // namespace mirvo
