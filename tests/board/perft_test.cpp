#include "board/perft.h"

#include <cstdio>
#include <string>
#include <utility>

#include "shell/base/clock.h"
#include "tests/board/perft_cases.h"

namespace mirvo::test {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

class PerftFast : public testing::TestWithParam<PerftCase> {};

TEST_P(PerftFast, CountsTheKnownNumbers) { ExpectPerft(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Positions, PerftFast, testing::ValuesIn(PerftCases("perft/fast.txt")),
                         PerftCaseName);

std::string RunAndCapture(const std::string& fen, int depth) {
  const auto board = std::make_unique<Board>(BoardFrom(fen));
  CaptureStdout();
  RunPerft(*board, depth);
  return GetCapturedStdout();
}

/// The text with 0 for each digit, and one 0 for all digits before a point.
std::string WithoutNumbers(const std::string& text) {
  std::string result;
  bool isFraction = false;
  for (const char c : text) {
    const bool isDigit = c >= '0' && c <= '9';
    if (!isDigit) isFraction = c == '.';
    if (isDigit && !isFraction && result.ends_with('0')) continue;
    result += isDigit ? '0' : c;
  }
  return result;
}

TEST(RunPerft, PrintsTimeSpeedAndSplits) {
  const std::string text = RunAndCapture(startFen, 3);
  EXPECT_EQ(WithoutNumbers(text), "Time = 0.00s\nkNodes/sec = 0.00\nSplits = 0\n");
  EXPECT_TRUE(text.ends_with("Splits = 0\n"));
}

// A clock that shows `firstTick`, then `secondTick`.
std::uint32_t firstTick = 0;
std::uint32_t secondTick = 0;

std::uint32_t NextTick() { return std::exchange(firstTick, secondTick); }

// The moves of all depths (20 + 400 + 8902), divided by the time plus 1 ms.
TEST(RunPerft, SpeedIsAllMovesByTheTimeAndAMillisecond) {
  const struct {
    std::uint32_t start;
    std::uint32_t end;
    const char* text;
  } cases[] = {
      {5000, 6999, "Time = 2.00s\nkNodes/sec = 4.66\nSplits = 0\n"},
      {5000, 5000, "Time = 0.00s\nkNodes/sec = 9322.00\nSplits = 0\n"},
      {5000, 5024, "Time = 0.03s\nkNodes/sec = 372.88\nSplits = 0\n"},
      {4294967295U, 998, "Time = 1.00s\nkNodes/sec = 9.32\nSplits = 0\n"},
  };
  for (const auto& c : cases) {
    firstTick = c.start;
    secondTick = c.end;
    SetTickSource(NextTick);
    const std::string text = RunAndCapture(startFen, 3);
    SetTickSource(nullptr);
    EXPECT_EQ(text, c.text) << c.start;
  }
}

TEST(RunPerft, CountsEveryDepthUpToTheTarget) {
  RunAndCapture(startFen, 3);
  EXPECT_EQ(PerftCountAtDepth(1), 20U);
  EXPECT_EQ(PerftCountAtDepth(2), 400U);
  EXPECT_EQ(PerftCountAtDepth(3), 8902U);
  EXPECT_EQ(PerftCountAtDepth(4), 0U);
}

TEST(RunPerft, StartsFromZeroEachTime) {
  RunAndCapture(startFen, 3);
  RunAndCapture(startFen, 2);
  EXPECT_EQ(PerftCountAtDepth(1), 20U);
  EXPECT_EQ(PerftCountAtDepth(2), 400U);
  EXPECT_EQ(PerftCountAtDepth(3), 0U);
}

TEST(RunPerft, DepthZeroCountsNothing) {
  for (const int depth : {0, -1, -1000}) {
    const std::string text = RunAndCapture(startFen, depth);
    EXPECT_NE(text.find("kNodes/sec = 0.00\nSplits = 0\n"), std::string::npos) << text;
    EXPECT_EQ(PerftCountAtDepth(1), 0U);
  }
}

TEST(RunPerft, DepthsBeyondTheCountersAreCutAtTen) {
  // Two kings that cannot leave their corners.
  RunAndCapture("8/8/8/8/8/p1p5/P1p5/K1k5 w -", 50);
  EXPECT_EQ(PerftTargetDepth, 10);
  EXPECT_EQ(PerftCountAtDepth(10), PerftCounts[9]);
  EXPECT_EQ(PerftCountAtDepth(11), PerftCounts[9]);
}

TEST(RunPerft, APositionWithoutMovesShowsTheHelpersCounts) {
  // Stalemate.
  RunAndCapture("k7/2Q5/1K6/8/8/8/8/8 b -", 2);
  EXPECT_EQ(PerftCountAtDepth(1), 0U);
  PerftSplitCounts[0][0] = 5;
  PerftSplitCounts[1][0] = 7;
  EXPECT_EQ(PerftCountAtDepth(1), 12U);
  RunAndCapture("k7/2Q5/1K6/8/8/8/8/8 b -", 2);
  EXPECT_EQ(PerftCountAtDepth(1), 0U);
}

TEST(RunPerft, CountsEveryMoveMadeLegalOrNot) {
  // The pinned rook's moves off the file are made, tested and unmade.
  const std::uint64_t before = nPerftMoves;
  const auto board = std::make_unique<Board>(BoardFrom("4r1k1/8/8/8/8/8/4R3/4K3 w -"));
  const std::size_t nMoves = AllMoves(*board).size();
  ASSERT_GT(nMoves, LegalMoves(*board).size());
  CaptureStdout();
  RunPerft(*board, 1);
  GetCapturedStdout();
  EXPECT_EQ(nPerftMoves - before, nMoves);
  EXPECT_EQ(PerftCountAtDepth(1), LegalMoves(*board).size());
}

TEST(RunPerft, WorksAtTheEndOfALongGame) {
  const auto board = std::make_unique<Board>(BoardFrom(startFen));
  for (int i = 0; i < 124; ++i) Play(*board, "g1f3 g8f6 f3g1 f6g8");
  CaptureStdout();
  RunPerft(*board, 3);
  GetCapturedStdout();
  EXPECT_EQ(PerftCountAtDepth(3), 8902U);
}

}  // namespace
}  // namespace mirvo::test
