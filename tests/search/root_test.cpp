// The root search by itself: one depth, one window.
#include "search/root.h"

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "board/notation.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/search_hooks.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

constexpr std::int32_t open = infiniteScore;
constexpr std::int32_t farAway = 5000;  // no position of these tests comes near it

int nPolls = 0;

class Root : public testing::Test {
 protected:
  Root() : quiet(engineConfig.Quiet) {
    test::ColdStart();
    nPolls = 0;
    engineConfig.Quiet = true;
  }
  ~Root() override {
    engineConfig.Quiet = quiet;
    searchHooks = SearchHooks{};
  }

  void Set(const std::string& position) {
    test::SetPosition(board, position);
    state = SearchState{};
    state.nextInputPoll = 1U << 30;  // none but the root polls
  }

  std::int32_t Run(std::int32_t alpha, std::int32_t beta, int depth) {
    return SearchRoot(state, board, NodeInput{alpha, beta, depth}, &pv);
  }

  Move MoveOf(const char* text) const { return MoveFromCoordinates(text, board, board.sideToMove); }

  void SuggestMove(const char* text) {
    HashStore(TranspositionTable, board.positionKey, MoveOf(text), 0, noBound, 0);
  }

  const HashEntry& Slot() const { return HashSlot(TranspositionTable, board.positionKey); }

  int DepthAfter(const char* text) {
    MakeMove(board, MoveOf(text));
    const HashEntry& slot = Slot();
    const int depth = slot.key == board.positionKey ? slot.depth : -1;
    UnmakeMove(board);
    return depth;
  }

  std::vector<int> DepthsAfter(const std::vector<const char*>& texts) {
    std::vector<int> depths;
    for (const char* text : texts) depths.push_back(DepthAfter(text));
    return depths;
  }

  bool quiet;
  Board board;
  SearchState state;
  PvLine pv{};
};

// White: knights a1 and b1, king h1; eight moves, none forced.
constexpr char twoKnights[] = "7k/8/8/8/8/8/8/NN5K w -";

TEST_F(Root, AReturnToAnEarlierPositionIsADraw) {
  // Against the queen White has one move, which returns to an earlier position.
  Set("7k/8/8/8/8/8/q7/7K w -");
  for (const char* text : {"h1g1", "h8g8", "g1h1", "g8h8"}) MakeMove(board, MoveOf(text));
  EXPECT_EQ(Run(-open, open, 2), 0);
  EXPECT_EQ(state.nodeCount, 1U);
  ASSERT_EQ(pv.length, 1);
  EXPECT_EQ(test::MoveText(pv.moves[0]), "h1g1");
}

TEST_F(Root, AMateInOneNeedsNoLine) {
  Set("6k1/5ppp/8/8/8/8/8/3RK3 w -");
  EXPECT_EQ(SearchRoot(state, board, NodeInput{-open, open, 4}, nullptr), 32768);
  EXPECT_EQ(Run(-open, open, 4), 32768);
  ASSERT_EQ(pv.length, 1);
  EXPECT_EQ(test::MoveText(pv.moves[0]), "d1d8");
}

TEST_F(Root, AMoveThatGivesCheckIsMarked) {
  Set("3q2k1/8/8/8/8/8/3R4/3RK3 w -");
  Run(-open, open, 2);
  EXPECT_EQ(test::MoveText(pv.moves[0]), "d2d8");
  EXPECT_NE(pv.moves[0] & checkMark, 0U);
  EXPECT_NE(Slot().move & checkMark, 0U);
}

TEST_F(Root, AnExtendedCutIsStoredWithTheRootsDepth) {
  Set("7k/8/P7/8/8/8/8/7K w -");
  engineConfig.MaxNumExtPerDepth = 1000;
  SuggestMove("a6a7");
  EXPECT_GE(Run(-farAway - 1, -farAway, 1), -farAway);
  engineConfig.MaxNumExtPerDepth = 100;
  EXPECT_EQ(DepthAfter("a6a7"), 1);
  EXPECT_EQ(Slot().bound, lowerBound);
  EXPECT_EQ(Slot().depth, 1);
  EXPECT_EQ(Slot().move, MoveOf("a6a7"));
  EXPECT_EQ(KillerTable[0].second, MoveOf("a6a7"));
  EXPECT_EQ(KillerTable[0].secondWeight, state.nodeCount);
  EXPECT_EQ(HistoryTable[white][40][48], 1);
  EXPECT_EQ(pv.length, 1);  // written before the cut
}

TEST_F(Root, ACaptureThatCutsIsNoKiller) {
  Set("4k3/8/8/3q4/8/8/8/3RK3 w -");
  Run(-farAway - 1, -farAway, 2);
  EXPECT_EQ(test::MoveText(Slot().move), "d1d5");
  EXPECT_EQ(Slot().bound, lowerBound);
  EXPECT_EQ(KillerTable[0].second, noMove);
  EXPECT_EQ(HistoryTable[white][3][35], 0);
}

TEST_F(Root, AFailLowIsAnUpperBoundWithoutAMoveAndLeavesTheLine) {
  Set(twoKnights);
  pv.length = 3;
  EXPECT_LE(Run(farAway, farAway + 1000, 2), farAway);
  EXPECT_EQ(Slot().bound, upperBound);
  EXPECT_EQ(Slot().depth, 2);
  EXPECT_EQ(Slot().move, noMove);
  EXPECT_EQ(pv.length, 3);
}

TEST_F(Root, WithoutAMoveStalemateEmptiesTheLineAndStoresNothing) {
  Set("7k/5Q2/6K1/8/8/8/8/8 b -");
  pv.length = 3;
  EXPECT_EQ(Run(-open, open, 2), 0);
  EXPECT_EQ(pv.length, 0);
  EXPECT_NE(Slot().key, board.positionKey);
}

TEST_F(Root, BeingMatedIsTheSameAtEveryDepth) {
  for (const int depth : {1, 5}) {
    Set("3R2k1/5ppp/8/8/8/8/8/4K3 b -");
    EXPECT_EQ(Run(-open, open, depth), -32768);
    EXPECT_EQ(Slot().bound, upperBound);
    EXPECT_EQ(Slot().score, -32768);
    EXPECT_EQ(Slot().depth, depth);
    EXPECT_EQ(Slot().move, noMove);
  }
}

// Counts the picker's moves by their polls. A shallower search stores an exact
// slot, whose move the probe does not return, so no move comes twice.
TEST_F(Root, WithoutATableMoveShallowerSearchesGoFirst) {
  struct Case {
    int depth, searches;
  };
  int nExpected = 0;
  for (const Case& c : {Case{1, 1}, {2, 1}, {3, 2}, {4, 3}}) {
    test::ColdStart();
    searchHooks.pollInput = [] { ++nPolls; };
    Set(twoKnights);
    Run(-open, open, c.depth);
    nExpected += 8 * c.searches;
    EXPECT_EQ(nPolls, nExpected) << c.depth;
  }
}

TEST_F(Root, AShallowerSearchThatFailsLowIsRepeatedFromBelow) {
  searchHooks.pollInput = [] { ++nPolls; };
  Set(twoKnights);
  Run(farAway, farAway + 1000, 3);
  EXPECT_EQ(nPolls, 3 * 8);
}

TEST_F(Root, WithATableMoveOneSearchIsEnough) {
  searchHooks.pollInput = [] { ++nPolls; };
  Set(twoKnights);
  SuggestMove("b1c3");
  Run(-open, open, 3);
  EXPECT_EQ(nPolls, 9);  // that move comes again among the others
}

// Reduced by the table of the principal variation, by 1 at depth 4.
TEST_F(Root, MovesAreReducedFromNumberSixOn) {
  Set(twoKnights);
  SuggestMove("b1c3");  // numbers 0 and 1
  Run(farAway, farAway + 1000, 4);
  EXPECT_EQ(DepthsAfter({"b1c3", "b1a3", "b1d2", "a1b3", "a1c2", "h1h2", "h1g2", "h1g1"}),
            (std::vector<int>{3, 3, 3, 3, 3, 2, 2, 2}));
}

TEST_F(Root, IllegalMovesCountInTheNumber) {
  // Three moves of the pinned knight b1 come before the king's.
  Set("7k/8/8/8/8/8/7N/rN1K4 w -");
  SuggestMove("h2g4");
  Run(farAway, farAway + 1000, 4);
  EXPECT_EQ(DepthsAfter({"h2g4", "h2f3", "h2f1", "d1e2"}), (std::vector<int>{3, 3, 3, 2}));
}

TEST_F(Root, ChecksAreNotReduced) {
  // Nc2 gives check to the king on e3; Kg2, late as well, does not.
  Set("8/8/8/8/8/4k3/8/NN5K w -");
  SuggestMove("h1g1");              // numbers 0 and 8; Nc2 gives check as number 5
  HistoryTable[white][0][10] = -1;  // Nc2 comes last, as number 8
  Run(farAway, farAway + 1000, 4);
  EXPECT_EQ(DepthsAfter({"h1g2", "a1c2"}), (std::vector<int>{2, 3}));
}

}  // namespace
}  // namespace mirvo
