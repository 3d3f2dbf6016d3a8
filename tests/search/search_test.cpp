#include "search/search.h"

#include <gtest/gtest.h>

#include "board/attacks.h"
#include "board/notation.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/move_order.h"
#include "search/quiescence.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "search/search_stats.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

std::uint32_t fakeTicks = 0;
int nPolls = 0;

class MainSearch : public testing::Test {
 protected:
  MainSearch() {
    test::ColdStart();
    state.extensionLimit = 5;
    state.nextInputPoll = 8192;
    fakeTicks = 0;
    nPolls = 0;
    SetTickSource([] { return fakeTicks; });
  }
  ~MainSearch() override { SetTickSource(nullptr); }

  std::int32_t Run(const std::string& position, std::int32_t alpha, std::int32_t beta, int depth,
                   PvLine* pv = nullptr) {
    test::SetPosition(board, position);
    return Search(state, board, NodeInput{alpha, beta, depth}, pv);
  }

  Board board;
  SearchState state;
};

constexpr std::int32_t open = infiniteScore;
constexpr char backRankMate[] = "3R2k1/5ppp/8/8/8/8/8/4K3 b -";
constexpr char stalemate[] = "7k/5Q2/6K1/8/8/8/8/8 b -";
constexpr char middleGame[] = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w -";

TEST_F(MainSearch, AMateScoresTheRemainingDepth) {
  EXPECT_EQ(Run(backRankMate, -open, open, 3), 3 - 32768);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_EQ(slot.key, board.positionKey);
  EXPECT_EQ(slot.bound, exactBound);
  EXPECT_EQ(slot.score, 3 - 32768);
  EXPECT_EQ(slot.depth, 3);
}

TEST_F(MainSearch, AStalemateScoresZeroAsAnUpperBound) {
  EXPECT_EQ(Run(stalemate, -open, open, 2), 0);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_EQ(slot.bound, upperBound);
  EXPECT_EQ(slot.score, 0);
}

TEST_F(MainSearch, APositionSeenOnceBeforeIsADraw) {
  const std::string once = "startpos moves g1f3 g8f6 f3g1 f6g8";
  EXPECT_EQ(Run(once, 500, 501, 1), 0);
  EXPECT_EQ(state.nodeCount, 0U);
}

TEST_F(MainSearch, ACaptureCannotLeadToARepetition) {
  test::SetPosition(board, "startpos moves g1f3 g8f6 f3g1 f6g8");
  NodeInput input{500, 501, 1};
  input.afterCapture = true;
  Search(state, board, input, nullptr);
  EXPECT_GT(state.nodeCount + state.clockPolls, 0U);
}

TEST_F(MainSearch, AThirdOccurrenceIsSearchedOn) {
  const std::string twice = "startpos moves g1f3 g8f6 f3g1 f6g8 g1f3 g8f6 f3g1 f6g8";
  Run(twice, -open, open, 1);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(MainSearch, TheLastUndoRecordsAreLeftToTheQuiescenceSearch) {
  test::SetPosition(board, "startpos");
  board.undoDepth = undoCapacity - 126;
  Search(state, board, NodeInput{-open, open, 1}, nullptr);
  EXPECT_EQ(state.nodeCount, 0U);
  board.undoDepth = undoCapacity - 127;
  Search(state, board, NodeInput{-open, open, 1}, nullptr);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(MainSearch, TheHorizonIsTheQuiescenceSearch) {
  const std::int32_t score = Run(middleGame, -open, open, 0);
  SearchState other;
  EXPECT_EQ(score, Quiesce(other, board, -open, open, 0));
}

TEST_F(MainSearch, ATableCutoffReturnsAtNonPvNodesOnly) {
  test::SetPosition(board, middleGame);
  HashStore(TranspositionTable, board.positionKey, noMove, 123, exactBound, 9);
  EXPECT_EQ(Search(state, board, NodeInput{10, 11, 3}, nullptr), 123);
  EXPECT_EQ(TranspositionTable.hits, 1U);
  EXPECT_EQ(state.nodeCount, 0U);
  Search(state, board, NodeInput{-open, open, 1}, nullptr);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(MainSearch, KeyZeroIsNotInTheTable) {
  test::SetPosition(board, middleGame);
  board.positionKey = 0;
  HashEntry& empty = HashSlot(TranspositionTable, 0);
  empty.score = 123;
  empty.bound = exactBound;
  empty.depth = 9;
  Search(state, board, NodeInput{10, 11, 1}, nullptr);
  EXPECT_EQ(TranspositionTable.hits, 0U);
  EXPECT_GT(TranspositionTable.conflicts, 0U);
}

TEST_F(MainSearch, AnExcludedMoveIsNotSearched) {
  // The pawn may take the queen, or lose against it.
  test::SetPosition(board, "4k3/8/8/3q4/4P3/8/8/4K3 w -");
  NodeInput input{-open, open, 1};
  EXPECT_GT(Search(state, board, input, nullptr), 0);
  input.excluded = BuildMove(28, 35, white, pawn);  // e4xd5
  EXPECT_LT(Search(state, board, input, nullptr), -500);
  // Without its only move Black is stalemated.
  test::SetPosition(board, "k7/8/1K6/8/8/8/8/8 b -");
  input.excluded = BuildMove(56, 57, black, king);  // Ka8-b8
  EXPECT_EQ(Search(state, board, input, nullptr), 0);
}

TEST_F(MainSearch, TableCountersTellConflictsMissesAndHits) {
  test::SetPosition(board, middleGame);
  const std::uint64_t key = board.positionKey;
  HashStore(TranspositionTable, key, noMove, 50, lowerBound, 2);
  searchFlags.NoInputPolling = true;
  Search(state, board, NodeInput{10, 11, 2}, nullptr);  // usable
  EXPECT_EQ(TranspositionTable.hits, 1U);
  Search(state, board, NodeInput{60, 61, 1}, nullptr);  // deep enough, not usable
  EXPECT_GE(TranspositionTable.misses, 1U);
}

TEST_F(MainSearch, TheLineBeginsWithTheBestMoveAndIsPlayable) {
  PvLine pv{};
  Run(middleGame, -open, open, 4, &pv);
  ASSERT_GE(pv.length, 1);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_TRUE(SameMove(pv.moves[0], slot.move));
  EXPECT_EQ(slot.bound, exactBound);
  Board line;
  test::SetPosition(line, middleGame);
  for (int i = 0; i < pv.length; ++i) {
    const std::string text = test::MoveText(pv.moves[i]);
    EXPECT_NE(PlayCoordinateMove(text.c_str(), line, line.sideToMove), noMove) << text;
    EXPECT_FALSE(MoverLeftInCheck(line)) << text;
  }
}

TEST_F(MainSearch, APvIsBoundedAtItsCapacity) {
  PvLine child{};
  child.length = pvCapacity;
  PvLine pv{};
  WritePv(pv, BuildMove(1, 2, 0, 3), child);
  EXPECT_EQ(pv.length, pvCapacity);
  EXPECT_EQ(pv.moves[0], BuildMove(1, 2, 0, 3));
}

TEST_F(MainSearch, TheAbortFlagReturnsAQuickScoreAndStoresNothing) {
  searchFlags.StopSearch = true;
  const std::int32_t score = Run(middleGame, -open, open, 6);
  SearchState other;
  EXPECT_EQ(score, Quiesce(other, board, -open, open, 0));
  EXPECT_NE(HashSlot(TranspositionTable, board.positionKey).key, board.positionKey);
}

TEST_F(MainSearch, TheClockIsReadOnceIn1024Entries) {
  const SearchLimits limits{.milliseconds = 10};
  state.limits = &limits;
  timeControl.startTime = 0;
  fakeTicks = 1000;
  state.clockPolls = 1024;
  Run(middleGame, 0, 1, 0);
  EXPECT_FALSE(Stopped(state));
  state.clockPolls = 1025;
  Run(middleGame, 0, 1, 0);
  EXPECT_EQ(state.stopCause, StopCause::time);
}

TEST_F(MainSearch, ThinkingWithoutLimitNeverLooksAtTheClock) {
  const SearchLimits limits{.milliseconds = 0, .infinite = true};
  state.limits = &limits;
  fakeTicks = 1000000;
  state.clockPolls = 5000;
  Run(middleGame, 0, 1, 3);
  EXPECT_FALSE(Stopped(state));
}

TEST_F(MainSearch, InputIsPolledEvery8192Moves) {
  searchHooks.pollInput = [] { ++nPolls; };
  Run(middleGame, -open, open, 6);
  EXPECT_GT(nPolls, 0);
  EXPECT_EQ(static_cast<std::uint32_t>(nPolls), state.nodeCount / 8192);
}

TEST_F(MainSearch, NoPollingMeansNone) {
  searchHooks.pollInput = [] { ++nPolls; };
  searchFlags.NoInputPolling = true;
  Run(middleGame, -open, open, 6);
  EXPECT_EQ(nPolls, 0);
}

TEST_F(MainSearch, AStopFromAPollUnwindsWithoutATrace) {
  searchHooks.pollInput = [] {
    if (++nPolls == 2) searchFlags.StopSearch = true;
  };
  PvLine pv{};
  Run(middleGame, -open, open, 30, &pv);
  EXPECT_EQ(nPolls, 2);
  EXPECT_EQ(state.stopCause, StopCause::command);
  EXPECT_LT(state.nodeCount, 3U * 8192U);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(state.extensions, 0);
  EXPECT_EQ(board.positionKey, ComputeKey(board));
}

TEST(ExtendedKind, ArePromotionsAndPawnsOneStepFromIt) {
  EXPECT_TRUE(IsExtendedKind(BuildMove(52, 60, white, pawn) | PromotionBits(queen)));
  EXPECT_TRUE(IsExtendedKind(BuildMove(44, 52, white, pawn)));
  EXPECT_TRUE(IsExtendedKind(BuildMove(20, 12, black, pawn)));
  EXPECT_FALSE(IsExtendedKind(BuildMove(12, 20, white, pawn)));
  EXPECT_FALSE(IsExtendedKind(BuildMove(44, 52, white, rook)));
}

TEST_F(MainSearch, TheExtensionLimitIsNeverReached) {
  const Move pawnToSeventh = BuildMove(44, 52, white, pawn);
  const Move rookMove = BuildMove(44, 52, white, rook);
  SearchStats stats;
  state.extensionLimit = 2;
  state.extensions = 0;
  EXPECT_EQ(CountExtension(stats, state, pawnToSeventh), 1);
  EXPECT_EQ(CountExtension(stats, state, rookMove), 0);
  state.extensions = 1;
  EXPECT_EQ(CountExtension(stats, state, pawnToSeventh), 0);
  // Counts all moves of the kind, extended or not.
  EXPECT_EQ(stats.nPromExt, 2);
  EXPECT_EQ(stats.nExt, 2);
}

// White is far behind: its one capture wins too little; its king moves are
// searched in any case.
constexpr char farBehind[] = "7k/8/8/8/8/1p5q/P7/K7 w -";

TEST_F(MainSearch, ANodeFarBehindNextToTheHorizonFailsLow) {
  Run(farBehind, 5000, 5001, 1);
  EXPECT_GT(state.nodeCount, 0U);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_EQ(slot.bound, upperBound);
  EXPECT_EQ(slot.move, noMove);
  EXPECT_LE(slot.score, 5000);
}

TEST_F(MainSearch, ANullMoveResultKeepsTheKnownMoveOfTheSlot) {
  // A queen up, even passing beats beta.
  const std::string position = "4k3/8/8/8/8/8/8/Q3K3 w -";
  test::SetPosition(board, position);
  const Move known = BuildMove(0, 8, white, queen);
  HashStore(TranspositionTable, board.positionKey, known, -5000, lowerBound, 1);
  const std::int32_t score = Search(state, board, NodeInput{0, 1, 4}, nullptr);
  EXPECT_GE(score, 1);
  const HashEntry& slot = HashSlot(TranspositionTable, board.positionKey);
  EXPECT_EQ(slot.move, known);
  EXPECT_EQ(slot.bound, lowerBound);
  EXPECT_EQ(slot.depth, 4);
  EXPECT_EQ(board.plyCount, 0);
  EXPECT_EQ(board.nullMoveMade, 0);
}

TEST_F(MainSearch, ASideWithPawnsAloneDoesNotPass) {
  // With a piece the null move cuts off; with pawns alone moves are searched.
  Run("4k3/8/8/8/8/8/PPPPPP2/4K3 w -", 0, 1, 4);
  EXPECT_NE(HashSlot(TranspositionTable, board.positionKey).move, noMove);
}

TEST_F(MainSearch, ExtremeDepthsStayWithinTheirTables) {
  state.nextInputPoll = 20000;
  searchHooks.pollInput = [] { searchFlags.StopSearch = true; };
  Run("8/8/8/3k4/8/8/3P4/3K4 w -", -open, open, 300);
  EXPECT_EQ(board.undoDepth, 0);
}

}  // namespace
}  // namespace mirvo
