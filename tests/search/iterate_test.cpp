#include "search/iterate.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "board/legal_moves.h"
#include "board/make_move.h"
#include "book/opening_book.h"
#include "search/game_counters.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "shell/base/clock.h"
#include "shell/base/protocol_mode.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

int nPolls = 0;
int nTicks = 0;

class Thinking : public testing::Test {
 protected:
  Thinking() : saved(engineConfig) {
    test::ColdStart();
    nPolls = 0;
    engineConfig.InfiniteThinkingTime = 1;
    protocolMode.mode = uciProtocol;
  }
  ~Thinking() override {
    std::construct_at(&engineConfig, saved);
    searchFlags = SearchFlags{};
    searchHooks = SearchHooks{};
  }

  SearchResult Run(const std::string& position, int depth) {
    test::SetPosition(board, position);
    engineConfig.DepthSearch = depth;
    SearchRecord record = PrepareSearch(board);
    testing::internal::CaptureStdout();
    const SearchResult result = Think(record);
    lines.clear();
    for (const std::string& line : test::SplitLines(testing::internal::GetCapturedStdout())) {
      if (!line.starts_with("info currmove")) lines.push_back(line);
    }
    nodes = record.state.nodeCount;
    return result;
  }

  int CountLines(const std::string& part) const {
    int count = 0;
    for (const std::string& line : lines) count += line.find(part) != std::string::npos ? 1 : 0;
    return count;
  }

  EngineConfig saved;
  Board board;
  std::vector<std::string> lines;
  std::uint32_t nodes = 0;
};

constexpr char mateInOne[] = "6k1/5ppp/8/8/8/8/8/3RK3 w -";
constexpr char mateInTwo[] = "7k/8/8/8/8/8/R7/1R2K3 w -";
constexpr char middleGame[] = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w -";

TEST_F(Thinking, AMateInOneIsPlayedAfterOneIteration) {
  const SearchResult result = Run(mateInOne, 10);
  EXPECT_EQ(test::MoveText(result.best), "d1d8");
  EXPECT_NE(result.best & mateMark, 0U);
  EXPECT_EQ(result.best & checkMark, 0U);  // found before checks are marked
  EXPECT_EQ(result.ponder, noMove);
  EXPECT_EQ(CountLines("score cp 32768"), 1);
  EXPECT_EQ(CountLines("seldepth"), 1);
}

TEST_F(Thinking, AMateScoreEndsTheSearchAndIsMarked) {
  const SearchResult result = Run(mateInTwo, 20);
  EXPECT_NE(result.best & mateMark, 0U);
  EXPECT_LT(CountLines("seldepth"), 6);
}

TEST_F(Thinking, WithoutAMateTheMarkIsClear) { EXPECT_EQ(Run(middleGame, 3).best & mateMark, 0U); }

TEST_F(Thinking, AMatedSideHasNoMove) {
  const SearchResult result = Run("3R2k1/5ppp/8/8/8/8/8/4K3 b -", 5);
  EXPECT_EQ(result.best, noMove);
  EXPECT_EQ(result.ponder, noMove);
  EXPECT_EQ(CountLines("score cp -32768"), 1);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_EQ(slot.bound, upperBound);
  EXPECT_EQ(slot.score, -32768);
  EXPECT_EQ(slot.depth, 1);
}

TEST_F(Thinking, AStalematedSideHasNoMove) {
  const SearchResult result = Run("7k/5Q2/6K1/8/8/8/8/8 b -", 3);
  EXPECT_EQ(result.best, noMove);
  EXPECT_EQ(CountLines("score cp 0"), 3);
}

TEST_F(Thinking, AStartDepthPastTheLastDepthSearchesNothing) {
  engineConfig.StartIDDepth = 5;
  const SearchResult result = Run(middleGame, 4);
  EXPECT_EQ(nodes, 0U);
  EXPECT_EQ(CountLines("seldepth"), 0);
  // The first legal capture is the result.
  EXPECT_EQ(result.best, FirstLegalMove(board));
  EXPECT_NE(result.best, noMove);
}

TEST_F(Thinking, TheFirstDepthIsASetting) {
  engineConfig.StartIDDepth = 3;
  Run(middleGame, 4);
  EXPECT_EQ(CountLines("info depth 3 "), 1);
  EXPECT_EQ(CountLines("info depth 1"), 0);
  EXPECT_EQ(CountLines("info depth 2"), 0);
}

TEST_F(Thinking, EveryIterationIsTwoLines) {
  Run("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -", 3);
  ASSERT_GE(lines.size(), 6U);
  EXPECT_EQ(lines[0], "info depth 1");
  EXPECT_TRUE(lines[1].starts_with("info depth 1 seldepth "));
  EXPECT_EQ(lines[2], "info depth 2");
}

TEST_F(Thinking, TheHashReportFollowsAndItsCountersStartAgain) {
  Run(middleGame, 3);
  EXPECT_EQ(CountLines("Eval hash: Cache usage: hits="), 1);
  EXPECT_EQ(CountLines("Pawn hash: Cache usage: hits="), 1);
  EXPECT_EQ(CountLines("TT:        Cache usage: hits="), 1);
  EXPECT_EQ(TranspositionTable.hits + TranspositionTable.misses + TranspositionTable.conflicts, 0U);
}

TEST_F(Thinking, QuietPrintsNothing) {
  engineConfig.Quiet = true;
  Run(middleGame, 3);
  EXPECT_TRUE(lines.empty());
}

TEST_F(Thinking, TheGameBoardIsLeftAsItWas) {
  Run("startpos moves e2e4 e7e5 g1f3", 4);
  EXPECT_EQ(board.positionKey, ComputeKey(board));
  EXPECT_EQ(board.plyCount, 3);
  EXPECT_EQ(board.undoDepth, 3);
}

TEST_F(Thinking, TheSameSearchFromColdIsTheSame) {
  const SearchResult first = Run(middleGame, 6);
  const std::uint32_t firstNodes = nodes;
  test::ColdStart();
  protocolMode.mode = uciProtocol;
  const SearchResult second = Run(middleGame, 6);
  EXPECT_EQ(first.best, second.best);
  EXPECT_EQ(first.ponder, second.ponder);
  EXPECT_EQ(firstNodes, nodes);
}

TEST_F(Thinking, TheExpectedReplyIsLegalAfterTheBestMove) {
  for (const char* position : {"startpos", middleGame, "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -",
                               "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq"}) {
    const SearchResult result = Run(position, 5);
    ASSERT_NE(result.ponder, noMove) << position;
    EXPECT_EQ(searchFlags.ponderMove, result.ponder);
    MakeMove(board, result.best);
    EXPECT_TRUE(IsLegalMove(board, result.ponder)) << position;
  }
}

TEST_F(Thinking, TheShallowerSearchOfTheRootLeavesTheExtensionLimit) {
  test::SetPosition(board, middleGame);
  engineConfig.StartIDDepth = engineConfig.DepthSearch = 4;
  SearchRecord record = PrepareSearch(board);
  testing::internal::CaptureStdout();
  Think(record);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(record.state.extensionLimit, 4);
}

TEST_F(Thinking, BothBoardsAreLeftAtTheSearchedPosition) {
  test::SetPosition(board, middleGame);
  engineConfig.DepthSearch = 3;
  const std::uint64_t key = board.positionKey;
  SearchRecord record = PrepareSearch(board);
  testing::internal::CaptureStdout();
  const SearchResult result = Think(record);
  testing::internal::GetCapturedStdout();
  EXPECT_NE(result.ponder, noMove);
  EXPECT_EQ(board.positionKey, key);
  EXPECT_EQ(record.board->positionKey, key);
  EXPECT_EQ(record.board->undoDepth, board.undoDepth);
}

TEST_F(Thinking, AStopAtAnyPollLeavesALegalMove) {
  static int stopAt = 0;
  searchHooks.pollInput = [] {
    if (++nPolls == stopAt) searchFlags.StopSearch = true;
  };
  for (stopAt = 1; stopAt < 60; stopAt += 3) {
    nPolls = 0;
    test::ColdStart();
    searchHooks.pollInput = [] {
      if (++nPolls == stopAt) searchFlags.StopSearch = true;
    };
    protocolMode.mode = uciProtocol;
    const SearchResult result = Run(middleGame, 40);
    EXPECT_TRUE(IsLegalMove(board, result.best)) << stopAt;
    EXPECT_EQ(nPolls, stopAt);
  }
}

TEST_F(Thinking, StoppedBeforeAnyMoveItPlaysTheFirstLegalMove) {
  searchHooks.pollInput = [] { searchFlags.StopSearch = true; };
  const SearchResult result = Run(middleGame, 40);
  EXPECT_EQ(result.best, FirstLegalMove(board));
  EXPECT_EQ(CountLines("seldepth"), 0);
}

TEST_F(Thinking, WithoutABookTheTimeDoublesOnce) {
  searchFlags.BookInUse = true;
  engineConfig.FixedTimePerMove = 700;
  Run(middleGame, 2);
  EXPECT_EQ(engineConfig.FixedTimePerMove, 1400);
  EXPECT_FALSE(searchFlags.BookInUse);
  Run(middleGame, 2);
  EXPECT_EQ(engineConfig.FixedTimePerMove, 1400);
}

TEST_F(Thinking, PonderingRepeatsTheLastDepthUntilTheHit) {
  searchFlags.pondering = true;
  searchHooks.pollInput = [] {
    if (++nPolls > 400) searchFlags.pondering = false;
  };
  Run("8/8/8/3k4/8/8/3P4/3K4 w -", 2);
  EXPECT_GT(nPolls, 400);
  // A repeated depth is reported again only if score or line have changed.
  EXPECT_LE(CountLines("info depth 2 seldepth"), 2);
}

Board* heldBoard = nullptr;

TEST_F(Thinking, ARepeatedDepthThatSaysSomethingNewIsReportedAgain) {
  heldBoard = &board;
  searchFlags.pondering = true;
  searchHooks.pollInput = [] {
    // After the first report the position is replaced by another one.
    if (++nPolls == 10) test::SetPosition(*heldBoard, "8/8/8/3k4/8/8/3Q4/3K4 w -");
    if (nPolls > 40) searchFlags.StopSearch = true;
  };
  Run("8/8/8/3k4/8/8/3P4/3K4 w -", 2);
  std::string last;
  for (const std::string& line : lines) {
    if (line.starts_with("info depth 2 seldepth")) last = line;
  }
  const std::size_t score = last.find("score cp ");
  ASSERT_NE(score, std::string::npos);
  EXPECT_GT(std::stoi(last.substr(score + 9)), 900) << last;  // a queen instead of a pawn
}

TEST_F(Thinking, PonderingOnAMateWaitsForTheHit) {
  searchFlags.pondering = true;
  searchHooks.pollInput = [] {
    if (++nPolls > 30) searchFlags.pondering = false;
  };
  const SearchResult result = Run(mateInOne, 10);
  EXPECT_GT(nPolls, 30);
  EXPECT_NE(result.best & mateMark, 0U);
  EXPECT_EQ(CountLines("score cp 32768"), 1);
}

// Without polling a ponder wait must end otherwise: here through the clock.
TEST_F(Thinking, APonderWaitPollsNeitherWithoutAHookNorWithPollingOff) {
  SetTickSource([]() -> std::uint32_t {
    if (++nTicks > 200) searchFlags.pondering = false;
    return 1;
  });
  for (const bool hasHook : {false, true}) {
    nTicks = 0;
    searchFlags.pondering = true;
    searchFlags.NoInputPolling = hasHook;
    if (hasHook) searchHooks.pollInput = [] { ++nPolls; };
    Run("8/8/8/3k4/8/8/3P4/3K4 w -", 2);
    EXPECT_GT(nTicks, 200);
    EXPECT_EQ(nPolls, 0);
  }
  SetTickSource(nullptr);
}

TEST_F(Thinking, ASearchStartsFromTheLimitsOfTheSettings) {
  engineConfig.DepthSearch = 7;
  engineConfig.FixedTimePerMove = 300;
  engineConfig.InfiniteThinkingTime = 0;
  const SearchLimits timed = PrepareSearch(board).limits;
  EXPECT_EQ(timed.depth, 7);
  EXPECT_EQ(timed.milliseconds, 300);
  EXPECT_FALSE(timed.infinite);
  EXPECT_FALSE(timed.ponder);
  EXPECT_EQ(timed.deadline, noDeadline);
  EXPECT_EQ(timed.reportStyle, ReportStyle::protocol);
  engineConfig.InfiniteThinkingTime = 1;
  EXPECT_TRUE(PrepareSearch(board).limits.infinite);
}

// A search keeps to its record: what the settings say meanwhile is for the next.
TEST_F(Thinking, SettingsThatChangeDuringASearchDoNotSteerIt) {
  searchHooks.pollInput = [] {
    ++nPolls;
    engineConfig.InfiniteThinkingTime = 0;
    engineConfig.FixedTimePerMove = noFixedTime;
    engineConfig.DepthSearch = 1;
  };
  Run(middleGame, 6);
  EXPECT_GT(nPolls, 0);
  EXPECT_EQ(CountLines("info depth 6 seldepth"), 1);
}

SearchLimits* runningLimits = nullptr;

TEST_F(Thinking, LimitsThatAPollChangesHoldAtOnce) {
  test::SetPosition(board, middleGame);
  engineConfig.DepthSearch = 40;
  SearchRecord record = PrepareSearch(board);
  runningLimits = &record.limits;
  searchHooks.pollInput = [] {
    if (++nPolls < 30) return;
    runningLimits->infinite = false;
    runningLimits->milliseconds = noFixedTime;
  };
  testing::internal::CaptureStdout();
  Think(record);
  testing::internal::GetCapturedStdout();
  runningLimits = nullptr;
  EXPECT_EQ(record.state.stopCause, StopCause::time);
}

TEST_F(Thinking, AStopGivenBeforeTheSearchEndsItAtOnce) {
  searchHooks.pollInput = [] { ++nPolls; };
  searchFlags.StopSearch = true;
  const SearchResult result = Run("startpos", 5);
  EXPECT_EQ(result.best, FirstLegalMove(board));
  EXPECT_EQ(nPolls, 0);
}

TEST_F(Thinking, PonderingWithoutAnyMoveStillPolls) {
  searchFlags.pondering = true;
  searchHooks.pollInput = [] {
    if (++nPolls > 3) searchFlags.StopSearch = true;
  };
  const SearchResult result = Run("3R2k1/5ppp/8/8/8/8/8/4K3 b -", 5);
  EXPECT_EQ(result.best, noMove);
  EXPECT_EQ(nPolls, 4);
}

TEST_F(Thinking, TheLineShowsThePonderedMoveInFront) {
  searchFlags.pondering = true;
  searchFlags.ponderMove = BuildMove(52, 36, black, pawn);  // e7e5
  searchHooks.pollInput = [] {
    if (++nPolls > 300) searchFlags.StopSearch = true;
  };
  Run("startpos moves e2e4 e7e5", 3);
  EXPECT_GT(CountLines(" pv (e7e5) "), 0);
}

TEST_F(Thinking, PreviousLinesKeepTheTailOfOlderOnes) {
  Run("startpos", 6);
  const int longest = previousPv.length;
  ASSERT_GE(longest, 5);
  Run("8/8/8/3k4/8/8/3P4/3K4 w -", 1);
  EXPECT_EQ(previousPv.length, longest);
}

TEST_F(Thinking, AMateIsNotKeptAsThePreviousLine) {
  Run("startpos", 3);
  const PvLine before = previousPv;
  Run(mateInOne, 3);
  EXPECT_EQ(previousPv.length, before.length);
  EXPECT_EQ(previousPv.moves[0], before.moves[0]);
}

TEST_F(Thinking, ALineOfOneMoveTakesTheExpectedReplyOfThePreviousLine) {
  previousPv.length = 2;
  previousPv.moves[1] = BuildMove(52, 36, black, pawn);  // e7e5
  EXPECT_EQ(test::MoveText(Run("startpos", 1).ponder), "e7e5");
  previousPv.moves[1] = BuildMove(52, 28, black, pawn);  // e7e4 cannot be played
  EXPECT_EQ(Run("startpos", 1).ponder, noMove);
  previousPv.length = 1;
  EXPECT_EQ(Run("startpos", 1).ponder, noMove);
}

// A line of another position may have the right squares but another piece.
TEST_F(Thinking, AnExpectedReplyOfAnotherPieceIsNotTold) {
  previousPv.length = 2;
  previousPv.moves[1] = BuildMove(52, 36, black, queen);  // a queen from e7 to e5
  EXPECT_EQ(Run("startpos", 1).ponder, noMove);
  previousPv.moves[1] = BuildMove(52, 36, white, pawn);
  EXPECT_EQ(Run("startpos", 1).ponder, noMove);
}

TEST_F(Thinking, StoppedBeforeAnyLineThePreviousLineTellsTheReply) {
  searchHooks.pollInput = [] { searchFlags.StopSearch = true; };
  previousPv.length = 2;
  previousPv.moves[1] = BuildMove(52, 36, black, pawn);  // e7e5
  const SearchResult result = Run("startpos", 40);
  EXPECT_EQ(CountLines("seldepth"), 0);
  EXPECT_EQ(test::MoveText(result.ponder), "e7e5");
  EXPECT_EQ(searchFlags.ponderMove, result.ponder);
  previousPv.moves[1] = BuildMove(52, 28, black, pawn);  // e7e4 cannot be played
  EXPECT_EQ(Run("startpos", 40).ponder, noMove);
}

TEST_F(Thinking, WhatWasCountedBeforeTheSearchIsNotReported) {
  for (HashTable* table : {&EvalHashTable, &PawnHashTable, &TranspositionTable}) {
    table->hits = table->conflicts = table->misses = 5;
  }
  engineConfig.StartIDDepth = 5;
  Run(middleGame, 4);  // searches nothing
  EXPECT_EQ(CountLines("hits=0(-nan%) misses=0(-nan%) conflicts=0(-nan%)"), 3);
}

TEST_F(Thinking, AQuietPawnMoveIsNotReversible) {
  gameCounters = GameCounters{};
  gameCounters.reversibleMoves = 7;
  const SearchResult result = Run("8/8/P7/8/8/6b1/5k2/7K w -", 1);  // the only move
  EXPECT_EQ(test::MoveText(result.best), "a6a7");
  EXPECT_EQ(gameCounters.reversibleMoves, 0);
}

TEST_F(Thinking, CountsReversibleMoves) {
  gameCounters = GameCounters{};
  gameCounters.reversibleMoves = 99;
  Run("4k3/8/8/8/8/8/8/R3K3 w -", 1);  // no pawns, nothing to take
  EXPECT_EQ(gameCounters.reversibleMoves, 100);
  EXPECT_TRUE(gameCounters.hundredReached);
  Run("4k3/8/8/3q4/8/8/8/3RK3 w -", 2);  // the queen is taken
  EXPECT_EQ(gameCounters.reversibleMoves, 0);
  EXPECT_TRUE(gameCounters.hundredReached);
}

TEST(ReversibleMoves, OnlyExactlyAHundredSetsTheFlag) {
  GameCounters counters;
  counters.reversibleMoves = 100;
  CountReversibleMove(counters, true);
  EXPECT_FALSE(counters.hundredReached);
}

TEST_F(Thinking, AGameOf1200PliesCanBeSearched) {
  test::SetPosition(board, "startpos");
  const Move out[] = {BuildMove(6, 21, white, knight), BuildMove(62, 45, black, knight),
                      BuildMove(21, 6, white, knight), BuildMove(45, 62, black, knight)};
  for (int ply = 0; ply < 1200; ++ply) MakeMove(board, out[ply % 4]);
  engineConfig.DepthSearch = 4;
  SearchRecord record = PrepareSearch(board);
  testing::internal::CaptureStdout();
  const SearchResult result = Think(record);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(IsLegalMove(board, result.best));
  EXPECT_LE(board.undoDepth, undoCapacity - searchPlyRoom);
}

// Exchanges among so many queens practically never end.
constexpr char queenStorm[] = "qqqqqqqk/qqqqqqqq/8/8/8/8/QQQQQQQQ/KQQQQQQQ w -";

TEST_F(Thinking, AStopReachesAnEndlessExchange) {
  searchHooks.pollInput = [] {
    if (++nPolls == 30) searchFlags.StopSearch = true;
  };
  const SearchResult result = Run(queenStorm, 40);
  EXPECT_TRUE(IsLegalMove(board, result.best));
  EXPECT_EQ(nPolls, 30);
}

std::uint32_t runningTicks = 0;

TEST_F(Thinking, TheClockReachesAnEndlessExchange) {
  // A clock that advances at every reading.
  SetTickSource([] { return runningTicks += 10; });
  engineConfig.InfiniteThinkingTime = 0;
  engineConfig.FixedTimePerMove = 200;
  const SearchResult result = Run(queenStorm, 40);
  SetTickSource(nullptr);
  EXPECT_TRUE(IsLegalMove(board, result.best));
}

constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

TEST_F(Thinking, AWindowWiderThanAllScoresHoldsEveryScore) {
  engineConfig.AspirationWindow = greatest;
  Run(middleGame, 3);
  EXPECT_EQ(CountLines("seldepth"), 3);
}

TEST_F(Thinking, AnEmptyOrInvertedWindowFailsOnceADepth) {
  for (const std::int32_t window : {0, -200, smallest}) {
    engineConfig.AspirationWindow = window;
    Run(middleGame, 3);
    EXPECT_EQ(CountLines("seldepth"), 5) << window;  // depth 1 has the full window
  }
}

TEST_F(Thinking, ExtensionSettingsOfAnySizeEnd) {
  for (const std::int32_t percent : {smallest, -1, 0, greatest}) {
    engineConfig.MaxNumExtPerDepth = percent;
    EXPECT_TRUE(IsLegalMove(board, Run("8/P6k/8/8/8/8/p6K/8 w -", 4).best)) << percent;
  }
}

TEST_F(Thinking, TheExtensionLimitIsAPercentageOfTheDepthUpToABillion) {
  test::SetPosition(board, "3R2k1/5ppp/8/8/8/8/8/4K3 b -");  // mated: any depth is quick
  struct Case {
    std::int32_t percent, depth, limit;
  };
  constexpr Case cases[] = {
      {50, 7, 3}, {200, 10, 20}, {greatest, 60, 1000000000}, {smallest, 60, -1000000000}};
  for (const Case& c : cases) {
    engineConfig.MaxNumExtPerDepth = c.percent;
    SearchState state;
    SearchRoot(state, board, NodeInput{-infiniteScore, infiniteScore, c.depth}, nullptr);
    EXPECT_EQ(state.extensionLimit, c.limit) << c.percent;
  }
}

TEST_F(Thinking, StartDepthsOfAnySizeEnd) {
  searchHooks.pollInput = [] {
    if (++nPolls == 60) searchFlags.StopSearch = true;
  };
  for (const std::int32_t start : {smallest, 390, greatest}) {
    nPolls = 0;
    searchFlags.StopSearch = false;
    engineConfig.StartIDDepth = start;
    EXPECT_TRUE(IsLegalMove(board, Run("8/8/4k3/8/8/4K3/4P3/8 w -", 100000).best)) << start;
  }
}

TEST_F(Thinking, BoardsOutsideTheRulesAreSearchedWithoutHarm) {
  for (const char* position :
       {"8/8/8/8/8/8/8/8 w -", "4k3/8/8/8/8/8/8/8 w -", "8/8/8/8/8/8/8/4K3 w -",
        "PPPPPPPP/8/8/8/8/8/k7/ppppppKp w -", "QQQQQQQQ/QQQQQQQQ/8/8/8/k7/8/7K b -",
        "pppppppp/kkkkkkkk/8/8/8/8/KKKKKKKK/PPPPPPPP b KQkq", "4k3/8/8/8/8/8/8/4K3 w KQkq"}) {
    Run(position, 3);
  }
}

}  // namespace
}  // namespace mirvo
