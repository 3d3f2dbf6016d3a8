#include "shell/config/config.h"

#include <gtest/gtest.h>

#include <memory>

namespace mirvo {
namespace {

TEST(EngineConfig, StartsWithItsDefaults) {
  const auto config = std::make_unique<EngineConfig>();
  EXPECT_EQ(config->RunMode, RunModeCode::engine);
  EXPECT_EQ(config->PerftDepth, 0);
  EXPECT_STREQ(config->AnalyzeFile, "");
  EXPECT_EQ(config->AnalyzeFirst, 0);
  EXPECT_EQ(config->AnalyzeCount, 0);
  EXPECT_FALSE(config->Quiet);
  EXPECT_EQ(config->DepthSearch, 40);
  EXPECT_EQ(config->UseOpeningBook, 1);
  EXPECT_EQ(config->InfiniteThinkingTime, 0);
  EXPECT_EQ(config->PawnHashSize, 30);
  EXPECT_EQ(config->EvalHashSize, 100);
  EXPECT_EQ(config->TTHashSize, 100);
  EXPECT_EQ(config->AspirationWindow, 200);
  EXPECT_EQ(config->FixedTimePerMove, -1);
  EXPECT_EQ(config->UseMP, 0);
  EXPECT_EQ(config->NumberThreads, 2);
  EXPECT_EQ(config->StartIDDepth, 1);
  EXPECT_EQ(config->LoggingMode, 0);
  EXPECT_STREQ(config->BookName, "book.bk");
  EXPECT_EQ(config->Contempt, 0);
  EXPECT_EQ(config->CmdLineBook, 0);
  EXPECT_STREQ(config->CmdLineBookName, "");
  EXPECT_EQ(config->MaxNumExtPerDepth, 100);
  EXPECT_EQ(config->Ponder, 1);
  EXPECT_FALSE(config->ToolRunOnly);
  EXPECT_EQ(config->MoveOverhead, 0);
}

TEST(EngineConfig, HoldsTheInitialPosition) {
  const auto config = std::make_unique<EngineConfig>();
  const Board& board = config->CommandLineBoard;
  // The key published with the Polyglot book format for this position.
  EXPECT_EQ(board.positionKey, 0x463b96181691fc9cULL);
  EXPECT_EQ(board.sideToMove, white);
  EXPECT_FALSE(HasEnPassant(board));
}

TEST(EngineConfig, IsReadyBeforeMain) {
  EXPECT_EQ(engineConfig.DepthSearch, 40);
  EXPECT_STREQ(engineConfig.BookName, "book.bk");
  EXPECT_EQ(engineConfig.CommandLineBoard.positionKey, 0x463b96181691fc9cULL);
}

TEST(RunModeCode, CountsUpFromTheEngine) {
  int number = 0;
  for (const RunModeCode mode : {RunModeCode::engine, RunModeCode::analyze, RunModeCode::test,
                                 RunModeCode::perft, RunModeCode::eval, RunModeCode::createBook}) {
    EXPECT_EQ(static_cast<int>(mode), number++);
  }
}

TEST(BookFileOption, HasANameOfItsOwn) { EXPECT_STREQ(bookFileOptionText, "unique2.bin"); }

}  // namespace
}  // namespace mirvo
