// What the main search prunes, reduces and extends, observed from outside: by the
// depths that children store in the transposition table and by the number of
// nodes entered at the horizon.
#include <gtest/gtest.h>

#include "board/keys.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "eval/evaluate.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/search.h"
#include "shell/config/config.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

constexpr std::int32_t open = infiniteScore;
// No position of these tests comes near this score: every node fails low, and
// every reply to a move refutes it at once.
constexpr std::int32_t farAway = 5000;
constexpr int notStored = -1;

class Pruning : public testing::Test {
 protected:
  Pruning() { test::ColdStart(); }

  void Set(const std::string& position) {
    test::SetPosition(board, position);
    state = SearchState{};
    state.extensionLimit = 5;
    state.nextInputPoll = 1U << 30;
  }

  std::int32_t Run(std::int32_t alpha, std::int32_t beta, int depth) {
    return Search(state, board, NodeInput{alpha, beta, depth}, nullptr);
  }

  std::int32_t RunCold(const std::string& position, std::int32_t alpha, std::int32_t beta,
                       int depth) {
    test::ColdStart();
    Set(position);
    return Run(alpha, beta, depth);
  }

  Move MoveOf(const char* text) const { return MoveFromCoordinates(text, board, board.sideToMove); }

  /// Stores a hash move for the position, at a depth too small to decide anything.
  void SuggestMove(const char* text) {
    HashStore(TranspositionTable, board.positionKey, MoveOf(text), 0, noBound, 0);
  }

  const HashEntry& Slot() const { return HashSlot(TranspositionTable, board.positionKey); }

  static int StoredDepth(std::uint64_t key) {
    const HashEntry& slot = HashSlot(TranspositionTable, key);
    return slot.key == key ? slot.depth : notStored;
  }

  int DepthAfter(const char* text) {
    MakeMove(board, MoveOf(text));
    const int depth = StoredDepth(board.positionKey);
    UnmakeMove(board);
    return depth;
  }

  int DepthAfterPassing() const { return StoredDepth(board.positionKey ^ SideKey()); }

  std::vector<int> DepthsAfter(const std::vector<const char*>& texts) {
    std::vector<int> depths;
    for (const char* text : texts) depths.push_back(DepthAfter(text));
    return depths;
  }

  Board board;
  SearchState state;
};

// The table's bounds decide at the window's edges.

TEST_F(Pruning, AStoredBoundAtTheEdgeOfTheWindowDecides) {
  struct Case {
    HashBound bound;
    std::int32_t score;
    bool decides;
  };
  for (const Case& c : {Case{upperBound, 10, true},
                        {upperBound, 11, false},
                        {lowerBound, 11, true},
                        {lowerBound, 10, false}}) {
    Set("4k3/8/8/8/8/8/8/Q3K3 w -");
    HashStore(TranspositionTable, board.positionKey, noMove, c.score, c.bound, 9);
    const std::int32_t score = Run(10, 11, 1);
    EXPECT_EQ(state.nodeCount == 0, c.decides) << c.bound << ' ' << c.score;
    if (c.decides) {
      EXPECT_EQ(score, c.score);
    }
  }
}

// Null move.

constexpr char queenUp[] = "4k3/8/8/8/8/8/8/Q3K3 w -";

TEST_F(Pruning, PassingBeginsAtDepthFourAndReducesByThreeFromDepthSix) {
  struct Case {
    int depth, afterPassing;
  };
  for (const Case& c : {Case{2, notStored}, {3, notStored}, {4, 1}, {5, 2}, {6, 2}, {7, 3}}) {
    EXPECT_GE(RunCold(queenUp, 800, 801, c.depth), 801);
    EXPECT_EQ(DepthAfterPassing(), c.afterPassing) << c.depth;
    EXPECT_EQ(Slot().move == noMove, c.afterPassing != notStored) << c.depth;
    EXPECT_EQ(Slot().depth, c.depth);
    EXPECT_EQ(Slot().bound, lowerBound);
  }
}

TEST_F(Pruning, NobodyPassesOnThePrincipalVariation) {
  RunCold(queenUp, 0, 2, 4);
  EXPECT_EQ(DepthAfterPassing(), notStored);
}

TEST_F(Pruning, NobodyPassesInCheck) {
  RunCold("4r1k1/8/8/8/8/8/Q7/4K3 w -", -farAway - 1, -farAway, 4);
  EXPECT_EQ(DepthAfterPassing(), notStored);
  EXPECT_NE(Slot().move, noMove);
}

TEST_F(Pruning, EachPieceIsEnoughToPassAndPawnsAreNot) {
  for (const char* piece : {"N", "B", "R", "Q", "P"}) {
    RunCold("4k3/8/8/8/8/8/" + std::string(piece) + "7/4K3 w -", -farAway - 1, -farAway, 4);
    EXPECT_EQ(DepthAfterPassing(), piece[0] == 'P' ? notStored : 1) << piece;
  }
}

// Razoring. The rook faces a queen and has nothing to take.

constexpr char rookAgainstQueen[] = "4k2q/8/8/8/8/8/8/R3K3 w -";
constexpr std::int32_t razorAlpha = 662 - 1100 + 400;  // not yet above the margin

TEST_F(Pruning, FarBehindTwoPliesFromTheHorizonTheStaticScoreStands) {
  RunCold(rookAgainstQueen, razorAlpha, razorAlpha + 1, 2);
  EXPECT_GT(state.nodeCount, 0U);
  for (const std::int32_t beta : {razorAlpha + 2, razorAlpha + 500}) {
    const std::int32_t score = RunCold(rookAgainstQueen, razorAlpha + 1, beta, 2);
    EXPECT_EQ(state.nodeCount, 0U);
    EXPECT_EQ(DepthAfterPassing(), notStored);
    EXPECT_NE(Slot().key, board.positionKey);
    EvalRecord record;
    EXPECT_EQ(score, Evaluate(record, board, white));
  }
}

TEST_F(Pruning, OnlyDepthTwoIsRazored) {
  for (const int depth : {1, 3, 4}) {
    RunCold(rookAgainstQueen, farAway, farAway + 1, depth);
    EXPECT_GT(state.nodeCount, 0U) << depth;
  }
}

TEST_F(Pruning, AMoveFromTheTableForbidsRazoring) {
  Set(rookAgainstQueen);
  SuggestMove("a1a2");
  Run(farAway, farAway + 1, 2);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(Pruning, ACheckForbidsRazoring) {
  RunCold("4k3/4q3/8/8/8/8/8/R3K3 w -", farAway, farAway + 1, 2);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(Pruning, RazoringLooksThroughTheNegatedWindow) {
  // The rook wins the queen. The window (700, 701) would show it; with the negated
  // window the static score stands.
  const char* const position = "4k3/8/8/3q4/8/8/8/3RK3 w -";
  const std::int32_t score = RunCold(position, 700, 701, 2);
  EXPECT_EQ(state.nodeCount, 0U);
  EvalRecord record;
  EXPECT_EQ(score, Evaluate(record, board, white));
  // A capture that reaches alpha prevents razoring: the node is searched normally.
  EXPECT_GT(RunCold(position, 0, 1, 2), 0);
  EXPECT_EQ(Slot().key, board.positionKey);
}

// The estimate counts pieces only. With P own pawns a knight is worth
// 400 + (P - 5) * 100 / 16 and a rook 600 + (5 - P) * 100 / 8.
struct MaterialCase {
  const char* name;
  const char* fen;
  std::int32_t estimate;
};

class MaterialOf : public Pruning, public testing::WithParamInterface<MaterialCase> {};

TEST_P(MaterialOf, IsWhatRazoringGoesBy) {
  const MaterialCase& c = GetParam();
  const std::int32_t atMargin = c.estimate + 400;
  RunCold(c.fen, atMargin, atMargin + 1, 2);
  EXPECT_GT(state.nodeCount, 0U);
  RunCold(c.fen, atMargin + 1, atMargin + 2, 2);
  EXPECT_EQ(state.nodeCount, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Pieces, MaterialOf,
    testing::Values(MaterialCase{"knight", "4k3/8/8/8/8/8/8/1N2K3 w -", 369},
                    MaterialCase{"knightWithPawns", "4k3/8/8/8/8/8/PPPPPPPP/1N2K3 w -", 1218},
                    MaterialCase{"bishop", "4k3/8/8/8/8/8/8/2B1K3 w -", 400},
                    MaterialCase{"rook", "4k3/8/8/8/8/8/8/R3K3 w -", 662},
                    MaterialCase{"rookWithPawns", "4k3/8/8/8/8/8/PPPPPPPP/R3K3 w -", 1363},
                    MaterialCase{"queen", "4k3/8/8/8/8/8/8/Q3K3 w -", 1100},
                    MaterialCase{"knightOfTheOther", "1n2k3/8/8/8/8/8/8/4K3 w -", -369},
                    MaterialCase{"pawnsOfTheOther", "1n2k3/pppppppp/8/8/8/8/8/4K3 w -", -1218},
                    MaterialCase{"black", "r3k3/8/8/8/8/8/8/4K3 b -", 662}),
    [](const auto& instance) { return instance.param.name; });

// Futility, next to the horizon. Every searched move enters one horizon node,
// which stands pat; every legal move counts as a node.

struct FutilityCase {
  const char* name;
  const char* fen;
  const char* suggested;  // move from the table, or null
  std::uint32_t searched;
  std::uint32_t counted;
};

class FutileNode : public Pruning, public testing::WithParamInterface<FutilityCase> {};

TEST_P(FutileNode, SearchesNoMoreThanItMust) {
  const FutilityCase& c = GetParam();
  Set(c.fen);
  if (c.suggested != nullptr) SuggestMove(c.suggested);
  Run(farAway, farAway + 1, 1);
  EXPECT_EQ(state.clockPolls, c.searched);
  EXPECT_EQ(state.nodeCount, c.counted);
}

// Knight a1 (b3, then c2), king h1 (three moves), pawn a2 (two).
constexpr char knightAndPawn[] = "7k/8/8/8/8/8/P7/N6K w -";
// The same knight can take an undefended pawn.
constexpr char knightTakes[] = "7k/8/8/8/8/1p6/8/N6K w -";

INSTANTIATE_TEST_SUITE_P(
    Cases, FutileNode,
    testing::Values(
        // The first move, the king's and the pawn's; not the knight's second.
        FutilityCase{"quietMoves", knightAndPawn, nullptr, 6, 7},
        // Nc2 comes first, and once more among the quiet moves.
        FutilityCase{"tableMove", knightAndPawn, "a1c2", 7, 8},
        FutilityCase{"tableMoveOfTheKing", knightAndPawn, "h1g1", 6, 8},
        // Nc2 gives check to the king on e3, whose first step away is searched.
        FutilityCase{"check", "8/8/8/8/8/4k3/P7/N6K w -", nullptr, 8, 8},
        // The capture wins too little and does not count as the first move.
        FutilityCase{"capture", knightTakes, nullptr, 4, 5},
        // As the hash move it is searched, but not a second time.
        FutilityCase{"tableCapture", knightTakes, "a1b3", 4, 6},
        // Two knights may step between, the king may step aside.
        FutilityCase{"inCheck", "k6r/8/8/8/8/8/5N2/5N1K w -", nullptr, 4, 4}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(Pruning, WithEveryMovePrunedTheNodeScoresAlpha) {
  // White's only legal moves take a pawn each.
  EXPECT_EQ(RunCold("8/8/8/8/8/1p4b1/2p2k2/N6K w -", farAway, farAway + 1, 1), farAway);
  EXPECT_EQ(state.nodeCount, 2U);
  EXPECT_EQ(Slot().score, farAway);
  EXPECT_EQ(Slot().bound, upperBound);
}

TEST_F(Pruning, OnThePrincipalVariationNoMoveIsFutile) {
  Set(knightAndPawn);
  Run(farAway, farAway + 1000, 1);
  EXPECT_EQ(state.clockPolls, 7U);
}

TEST_F(Pruning, FutilityBeginsAboveItsMargin) {
  // A knight and its pawn: 375 + 100.
  Set(knightAndPawn);
  Run(875, 876, 1);
  EXPECT_EQ(state.clockPolls, 7U);
  Set(knightAndPawn);
  TranspositionTable.entries[HashIndex(TranspositionTable, board.positionKey)].key = 0;
  Run(876, 877, 1);
  EXPECT_EQ(state.clockPolls, 6U);
}

// Internal iterative deepening. Searching with half the depth first, by hand,
// takes exactly as many nodes.

constexpr char middleGame[] = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w -";

TEST_F(Pruning, WithoutATableMoveHalfTheDepthIsSearchedFirst) {
  for (const int depth : {3, 4, 5}) {
    RunCold(middleGame, -open, open, depth);
    const std::uint32_t nodes = state.nodeCount;
    RunCold(middleGame, -open, open, depth / 2);
    Run(-open, open, depth);
    EXPECT_EQ(state.nodeCount, nodes) << depth;
  }
  RunCold(middleGame, -open, open, 2);
  const std::uint32_t nodes = state.nodeCount;
  RunCold(middleGame, -open, open, 1);
  Run(-open, open, 2);
  EXPECT_NE(state.nodeCount, nodes);
}

TEST_F(Pruning, AHalvedSearchThatFailsLowIsRepeatedFromBelow) {
  RunCold(middleGame, farAway, farAway + 1000, 4);
  const std::uint32_t nodes = state.nodeCount;
  RunCold(middleGame, farAway, farAway + 1000, 2);
  Run(-open, farAway + 1000, 2);
  Run(farAway, farAway + 1000, 4);
  EXPECT_EQ(state.nodeCount, nodes);
}

// Late-move reductions: [4][4..6] is 1 and [4][7..8] is 2 off the principal
// variation, [4][6..9] is 1 on it.

constexpr char attackedKnight[] = "1k5r/8/8/8/8/8/7N/K7 w -";
constexpr char twoKnights[] = "7k/8/8/8/8/8/8/NN5K w -";
const std::vector<const char*> inOrder = {"b1c3", "b1a3", "b1d2", "a1b3",
                                          "a1c2", "h1h2", "h1g2", "h1g1"};

TEST_F(Pruning, LateMovesAreReducedFromTheFourth) {
  RunCold(twoKnights, farAway, farAway + 1, 4);
  EXPECT_EQ(DepthsAfter(inOrder), (std::vector<int>{3, 3, 3, 2, 2, 2, 1, 1}));
}

TEST_F(Pruning, OnThePrincipalVariationLateMovesAreReducedFromTheSixth) {
  // The hash move counts twice: as the first and as the second move.
  Set(twoKnights);
  SuggestMove("b1c3");
  Run(farAway, farAway + 1000, 4);
  EXPECT_EQ(DepthsAfter(inOrder), (std::vector<int>{3, 3, 3, 3, 2, 2, 2, 2}));
}

TEST_F(Pruning, AReducedMoveThatBeatsAlphaIsSearchedAtFullDepth) {
  // The attacked knight moves only after three moves of the king that lose it.
  Set(attackedKnight);
  for (const int to : {30, 21, 5}) HistoryTable[white][15][to] = -1;
  Run(-450, -449, 4);
  EXPECT_EQ(test::MoveText(Slot().move), "h2g4");
  EXPECT_EQ(Slot().bound, lowerBound);
  EXPECT_EQ(DepthAfter("h2g4"), 3);
}

TEST_F(Pruning, ChecksAreNotReduced) {
  RunCold("8/8/8/8/8/4k3/8/NN5K w -", farAway, farAway + 1, 4);
  EXPECT_EQ(DepthsAfter(inOrder), (std::vector<int>{3, 3, 3, 2, 3, 2, 1, 1}));
}

TEST_F(Pruning, ExtendedMovesAreNotReduced) {
  // The pawn's push to the seventh rank is the last of nine moves.
  RunCold("7k/8/P7/8/8/8/8/NN5K w -", farAway, farAway + 1, 4);
  EXPECT_EQ(DepthAfter("a6a7"), 4);
}

TEST_F(Pruning, NothingIsReducedAtDepthTwo) {
  Set(twoKnights);
  SuggestMove("b1c3");
  Run(farAway, farAway + 1, 2);
  EXPECT_EQ(DepthsAfter(inOrder), (std::vector<int>(8, 1)));
}

TEST_F(Pruning, LosingCapturesAreReducedAndGoodOnesAreNot) {
  // The sixth move loses the knight for the defended pawn on b4.
  RunCold("7k/8/8/2p5/1p6/8/N7/7K w -", farAway, farAway + 1, 4);
  EXPECT_EQ(DepthsAfter({"a2c3", "a2c1", "h1h2", "h1g2", "h1g1", "a2b4"}),
            (std::vector<int>{3, 3, 3, 2, 2, 2}));
  // Two knights can take four undefended pawns: the fourth capture is not reduced.
  RunCold("7k/8/8/1p1p1p1p/8/2N3N1/8/7K w -", farAway, farAway + 1, 4);
  EXPECT_EQ(DepthsAfter({"g3h5", "g3f5", "c3d5", "c3b5"}), (std::vector<int>{3, 3, 3, 3}));
}

// Extensions. White's only legal move is the pawn's to the seventh rank.

constexpr char onlyMoveExtends[] = "8/8/P7/8/8/6b1/5k2/7K w -";

TEST_F(Pruning, AnExtendedBestMoveIsStoredWithItsDepth) {
  RunCold(onlyMoveExtends, -open, open, 1);
  EXPECT_EQ(Slot().bound, exactBound);
  EXPECT_EQ(Slot().depth, 2);
  EXPECT_EQ(DepthAfter("a6a7"), 1);
  EXPECT_EQ(state.extensions, 0);
}

TEST_F(Pruning, AtTheLimitNothingIsExtended) {
  Set(onlyMoveExtends);
  state.extensionLimit = 1;
  Run(-open, open, 1);
  EXPECT_EQ(Slot().depth, 1);
  EXPECT_EQ(DepthAfter("a6a7"), notStored);
}

TEST_F(Pruning, AFailLowIsStoredWithTheNodesDepthAndNoMove) {
  RunCold(onlyMoveExtends, farAway, farAway + 1, 1);
  EXPECT_EQ(Slot().bound, upperBound);
  EXPECT_EQ(Slot().depth, 1);
  EXPECT_EQ(Slot().move, noMove);
  EXPECT_EQ(DepthAfter("a6a7"), 1);
}

TEST_F(Pruning, AnExtendedCutIsStoredDeeperAndRewardedByTheNodesDepth) {
  RunCold(onlyMoveExtends, -farAway - 1, -farAway, 1);
  EXPECT_EQ(Slot().bound, lowerBound);
  EXPECT_EQ(Slot().depth, 2);
  EXPECT_EQ(Slot().move, MoveOf("a6a7"));
  EXPECT_EQ(HistoryTable[white][40][48], 1);
}

// Cut-offs.

TEST_F(Pruning, AQuietCutIsAKillerOfItsPlyWeighedByTheNodes) {
  Set(twoKnights);
  SuggestMove("b1c3");
  board.plyCount = 9;
  Run(-farAway - 1000, -farAway, 4);
  EXPECT_EQ(KillerTable[9].second, MoveOf("b1c3"));
  EXPECT_EQ(KillerTable[9].secondWeight, state.nodeCount);
  EXPECT_GT(state.nodeCount, 1U);
  EXPECT_EQ(HistoryTable[white][1][18], 16);
}

TEST_F(Pruning, ACaptureThatCutsIsNoKillerAndLeavesTheHistory) {
  RunCold("4k3/8/8/3q4/8/8/8/3RK3 w -", -farAway - 1, -farAway, 2);
  EXPECT_EQ(test::MoveText(Slot().move), "d1d5");
  EXPECT_EQ(KillerTable[0].first, noMove);
  EXPECT_EQ(KillerTable[0].second, noMove);
  EXPECT_EQ(HistoryTable[white][3][35], 0);
}

TEST_F(Pruning, QuietMovesBeforeTheCutLoseHistory) {
  // The knight is attacked. The king's move, tried first, loses it.
  Set(attackedKnight);
  HistoryTable[white][0][9] = 50;
  Run(-450, -449, 1);
  EXPECT_EQ(test::MoveText(Slot().move), "h2g4");
  EXPECT_EQ(HistoryTable[white][0][9], 49);
  EXPECT_EQ(HistoryTable[white][15][30], 1);
  EXPECT_EQ(HistoryTable[white][15][21], 0);
}

}  // namespace
}  // namespace mirvo
