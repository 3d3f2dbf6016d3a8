#include "search/report.h"

#include <gtest/gtest.h>

#include <string>

#include "search/search_flags.h"
#include "search/search_stats.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/base/protocol_mode.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

std::uint32_t fakeTicks = 0;

class Reports : public testing::Test {
 protected:
  Reports() : quiet(engineConfig.Quiet) {
    test::ColdStart();
    engineConfig.Quiet = false;
    SetTickSource([] { return fakeTicks; });
    timeControl.startTime = 1000;
    fakeTicks = 3500;  // 2.5 s of search
    record.gameBoard = &board;
    record.state.iterationDepth = 7;
    record.state.selectiveDepth = 5;
    record.state.nodeCount = 10000;
    pv.length = 2;
    pv.moves[0] = BuildMove(12, 28, white, pawn);
    pv.moves[1] = BuildMove(57, 42, black, knight);
  }
  ~Reports() override {
    SetTickSource(nullptr);
    engineConfig.Quiet = quiet;
    searchFlags = SearchFlags{};
    protocolMode = ProtocolMode{};
    searchStats = SearchStats{};
  }

  std::string Report(std::int32_t score) {
    testing::internal::CaptureStdout();
    ReportIteration(record, pv, score);
    return testing::internal::GetCapturedStdout();
  }

  std::string RootMove(int number) {
    testing::internal::CaptureStdout();
    ReportRootMove(record.limits.reportStyle, board, pv.moves[0], number);
    return testing::internal::GetCapturedStdout();
  }

  bool quiet;
  Board board;
  SearchRecord record{};
  PvLine pv{};
};

TEST_F(Reports, UciTakesTwoLines) {
  protocolMode.mode = uciProtocol;
  EXPECT_EQ(Report(-35),
            "info depth 7\n"
            "info depth 7 seldepth 12 time 2500 score cp -35 nodes 10000 nps 4000 pv e2e4 b8c6 "
            "\n");
}

TEST_F(Reports, WithoutAProtocolTheUciFormIsUsed) {
  EXPECT_TRUE(Report(0).starts_with("info depth 7\n"));
}

TEST_F(Reports, InTheFirstMillisecondTheSpeedIsZero) {
  protocolMode.mode = uciProtocol;
  fakeTicks = 1000;
  EXPECT_NE(Report(0).find(" time 0 score cp 0 nodes 10000 nps 0 pv "), std::string::npos);
}

TEST_F(Reports, ASpeedBeyond31BitsStaysAtTheLargest) {
  protocolMode.mode = uciProtocol;
  fakeTicks = 1001;
  record.state.nodeCount = 2000000000U;
  EXPECT_NE(Report(0).find(" time 1 score cp 0 nodes 2000000000 nps 2147483520 pv "),
            std::string::npos);
}

TEST_F(Reports, AClockThatWentBackShowsNoTime) {
  protocolMode.mode = uciProtocol;
  fakeTicks = 900;
  EXPECT_NE(Report(0).find(" time 0 score cp 0 nodes 10000 nps 0 pv "), std::string::npos);
}

TEST_F(Reports, XBoardTakesCentisecondsAndAlgebraicMoves) {
  protocolMode.mode = xboardProtocol;
  EXPECT_EQ(Report(123), " 7    123    250    10000 e4 Nc6 \n");
}

TEST_F(Reports, QuietSilencesUciAndConsoleButNotXBoard) {
  engineConfig.Quiet = true;
  protocolMode.mode = uciProtocol;
  EXPECT_EQ(Report(1), "");
  record.limits.reportStyle = ReportStyle::console;
  EXPECT_EQ(Report(1), "");
  record.limits.reportStyle = ReportStyle::protocol;
  protocolMode.mode = xboardProtocol;
  EXPECT_NE(Report(1), "");
}

TEST_F(Reports, TheConsoleLineNumbersItsMoves) {
  record.limits.reportStyle = ReportStyle::console;
  protocolMode.mode = uciProtocol;  // a test-suite run comes first
  searchStats.nNodes = 9000;
  searchStats.nQSNodes = 1000;
  EXPECT_EQ(Report(150), " 7 0:2 +1.50 1.e4 Nc6  (10000/4)\n");
}

TEST_F(Reports, WithBlackToMoveTheScoreTurnsAndTheLineBeginsWithDots) {
  record.limits.reportStyle = ReportStyle::console;
  board.sideToMove = black;
  pv.moves[0] = BuildMove(57, 42, black, knight);
  pv.moves[1] = BuildMove(12, 28, white, pawn);
  fakeTicks = 1000 + 125000;
  EXPECT_EQ(Report(150), " 7 2:5 -1.50 1... Nc6 2.e4  (0/0)\n");
}

TEST_F(Reports, AnEvenScoreHasNoMinusForEitherSide) {
  record.limits.reportStyle = ReportStyle::console;
  EXPECT_NE(Report(0).find(" +0.00 "), std::string::npos);
  board.sideToMove = black;
  EXPECT_NE(Report(0).find(" +0.00 "), std::string::npos);
}

TEST_F(Reports, WhilePonderingTheExpectedMoveStandsInFront) {
  protocolMode.mode = xboardProtocol;
  searchFlags.pondering = true;
  EXPECT_EQ(Report(1), " 7      1    250    10000 e4 Nc6 \n");  // none known
  searchFlags.ponderMove = BuildMove(62, 45, black, knight);
  EXPECT_EQ(Report(1), " 7      1    250    10000 (Nf6) e4 Nc6 \n");
}

TEST_F(Reports, PrintPvWritesEitherNotation) {
  testing::internal::CaptureStdout();
  PrintPV(pv, true);
  PrintPV(pv, false);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "e4 Nc6 e2e4 b8c6 ");
}

TEST_F(Reports, RootMovesShowAtMostOnceASecond) {
  protocolMode.mode = uciProtocol;
  fakeTicks = 50000;
  EXPECT_EQ(RootMove(0), "info currmove e2e4 currmovenumber 0\n");
  fakeTicks = 51000;
  EXPECT_EQ(RootMove(1), "");
  fakeTicks = 51001;
  EXPECT_EQ(RootMove(2), "info currmove e2e4 currmovenumber 2\n");
}

TEST_F(Reports, InASuiteRootMovesShowTheirNumberOfAll) {
  record.limits.reportStyle = ReportStyle::console;
  fakeTicks = 90000;
  EXPECT_EQ(RootMove(3), "Pondering: e4 (3/20)\n");
}

TEST_F(Reports, RootMovesAreForUciAndSuitesOnly) {
  fakeTicks = 120000;
  EXPECT_EQ(RootMove(0), "");
  protocolMode.mode = xboardProtocol;
  EXPECT_EQ(RootMove(0), "");
  protocolMode.mode = uciProtocol;
  engineConfig.Quiet = true;
  EXPECT_EQ(RootMove(0), "");
}

TEST_F(Reports, StatisticsWithNothingCountedReadAsZero) {
  searchStats = SearchStats{};
  EXPECT_EQ(test::StatisticsLines(),
            (std::vector<std::string>{
                "gen> nNodes: 0 nQSNodes: 0 branchFactor: 0.00 avgDepth: 0.0",
                "ext> nExt: 0 nCheckExt: 0 nPromExt: 0 nPawnOnlyExt: 0 nOneMoveExt: 0",
                "mp> nSplits: 0"}));
}

TEST_F(Reports, StatisticsShowTheirQuotients) {
  searchStats.branchingSum = 5.0F;
  searchStats.branchingCount = 2.0F;
  searchStats.depthSum = 15.0F;
  searchStats.depthCount = 2.0F;
  EXPECT_EQ(test::StatisticsLines()[0],
            "gen> nNodes: 0 nQSNodes: 0 branchFactor: 2.50 avgDepth: 7.5");
}

}  // namespace
}  // namespace mirvo
