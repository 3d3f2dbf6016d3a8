#include "search/quiescence.h"

#include <gtest/gtest.h>

#include <utility>

#include "board/make_move.h"
#include "eval/evaluate.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "search/search_stats.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

class Quiescence : public testing::Test {
 protected:
  Quiescence() { test::ColdStart(); }

  std::int32_t Run(const std::string& position, std::int32_t alpha, std::int32_t beta,
                   std::int32_t qply = 0) {
    test::SetPosition(board, position);
    state = SearchState{};
    return Quiesce(state, board, alpha, beta, qply);
  }

  std::int32_t StaticScore(const std::string& position) {
    test::SetPosition(board, position);
    EvalRecord record;
    return Evaluate(record, board, board.sideToMove);
  }

  /// White's e5xd6 takes en passant.
  void SetEnPassant(const std::string& position) {
    test::SetPosition(board, position);
    board.epFile = 3;
    board.epRank = 5;
    board.epColour = black;
    board.positionKey = ComputeKey(board);
  }

  Board board;
  SearchState state;
};

constexpr std::int32_t open = infiniteScore;

TEST_F(Quiescence, AQuietPositionKeepsItsStaticScore) {
  const std::string position = "4k3/8/8/8/8/8/4P3/4K3 w -";
  const std::int32_t eval = StaticScore(position);
  EXPECT_EQ(Run(position, -open, open), eval);
  EXPECT_EQ(state.nodeCount, 0U);
  EXPECT_EQ(state.clockPolls, 1U);
}

TEST_F(Quiescence, AScoreAtOrAboveBetaStandsPat) {
  // Not even an undefended queen is captured.
  const std::string position = "4k3/8/8/3q4/8/8/8/3RK3 w -";
  const std::int32_t eval = StaticScore(position);
  EXPECT_EQ(Run(position, eval - 10, eval), eval);
  EXPECT_EQ(state.nodeCount, 0U);
}

TEST_F(Quiescence, AFreePieceIsTaken) {
  const std::string position = "4k3/8/8/3q4/8/8/8/3RK3 w -";
  EXPECT_GT(Run(position, -open, open), StaticScore(position) + 500);
  EXPECT_EQ(state.nodeCount, 1U);
  EXPECT_EQ(state.selectiveDepth, 1);  // one ply below the horizon
}

TEST_F(Quiescence, BeingMatedCountsPliesFromTheHorizon) {
  // Back-rank mate: the king's moves are generated and all illegal.
  const std::string position = "3R2k1/5ppp/8/8/8/8/8/4K3 b -";
  EXPECT_EQ(Run(position, -open, open), -32768);
  EXPECT_EQ(Run(position, -open, open, 5), 5 - 32768);
  EXPECT_EQ(state.selectiveDepth, 5);
}

TEST_F(Quiescence, ACheckWithNothingGeneratedKeepsTheStaticScore) {
  // The black king is blocked by its own pawns and by the white king: the
  // generator offers no move.
  const std::string position = "8/8/8/8/8/8/6pp/6Kk b -";
  EXPECT_EQ(Run(position, -open, open), StaticScore(position));
}

TEST_F(Quiescence, OnlyIllegalCapturesScoreZeroOutOfCheck) {
  // The knight is pinned and has the only captures.
  const std::string position = "4r1k1/8/8/8/5p2/8/4N3/4K3 w -";
  EXPECT_NE(StaticScore(position), 0);
  EXPECT_EQ(Run(position, -open, open), 0);
}

TEST_F(Quiescence, InCheckEveryEvasionIsSearched) {
  // Rook check; king steps aside on d2, f2, d1 and f1.
  Run("4r1k1/8/8/8/8/8/8/4K3 w -", -open, open);
  EXPECT_GE(state.nodeCount, 4U);
}

TEST_F(Quiescence, InCheckAStaticScoreAboveBetaDoesNotStandPat) {
  // White is a queen up but in check.
  Run("4r1k1/8/8/8/8/8/Q7/4K3 w -", -10, 10);
  EXPECT_GT(state.nodeCount, 0U);
}

// The rook's capture of the defended pawn loses.
constexpr char losingCapture[] = "4k3/8/2p5/3p4/8/8/8/3RK3 w -";

TEST_F(Quiescence, LosingCapturesAreSearchedAtPvNodesOnly) {
  const std::int32_t eval = StaticScore(losingCapture);
  Run(losingCapture, eval - 50, eval + 50);
  EXPECT_GT(state.nodeCount, 0U);
  Run(losingCapture, eval, eval + 1);
  EXPECT_EQ(state.nodeCount, 0U);
}

TEST_F(Quiescence, CapturesThatCannotReachAlphaArePrunedAtNonPvNodes) {
  // A pawn hangs; alpha is above static score + pawn + margin.
  const std::string position = "4k3/8/8/3p4/8/8/8/3RK3 w -";
  const std::int32_t eval = StaticScore(position);
  Run(position, eval + 201, eval + 202);
  EXPECT_EQ(state.nodeCount, 0U);
  Run(position, eval + 200, eval + 201);
  EXPECT_EQ(state.nodeCount, 1U);
}

TEST_F(Quiescence, AVictimOfJustEnoughWorthIsTaken) {
  // The static score, a margin of 100 and the victim have to reach alpha.
  struct Case {
    const char* position;
    std::int32_t worth;
  };
  for (const Case& c : {Case{"4k3/8/8/3n4/8/8/8/3RK3 w -", 400},
                        {"4k3/8/8/3b4/8/8/8/3RK3 w -", 400},
                        {"4k3/8/8/3r4/8/8/8/3RK3 w -", 600},
                        {"4k3/8/8/3q4/8/8/8/3RK3 w -", 1100},
                        {"3rk3/8/8/8/3N4/8/8/4K3 b -", 400}}) {
    const std::int32_t alpha = StaticScore(c.position) + 100 + c.worth;
    Run(c.position, alpha, alpha + 1);
    EXPECT_GT(state.nodeCount, 0U) << c.position;
    EXPECT_EQ(Run(c.position, alpha + 1, alpha + 2), StaticScore(c.position));
    Run(c.position, alpha + 1, alpha + 2);
    EXPECT_EQ(state.nodeCount, 0U) << c.position;
  }
}

TEST_F(Quiescence, APromotingCaptureIsTriedHoweverFarAlphaIs) {
  for (const char* position : {"n7/1P6/6k1/8/8/8/8/4K3 w -", "4k3/8/8/8/8/6K1/1p6/N7 b -"}) {
    const std::int32_t alpha = StaticScore(position) + 3000;
    Run(position, alpha, alpha + 1);
    EXPECT_EQ(state.nodeCount, 4U) << position;  // to each piece
  }
}

TEST_F(Quiescence, PrunedCapturesCountWhenTheyAreLegal) {
  // White can take a pawn each time; the pinned knight may not.
  const char* const illegal = "4r1k1/8/8/8/5p2/8/4N3/4K3 w -";
  EXPECT_EQ(Run(illegal, 4000, 4001), 0);
  const char* const legal = "6k1/8/8/8/5p2/8/4N3/4K3 w -";
  EXPECT_EQ(Run(legal, 4000, 4001), StaticScore(legal));
  // One knight is pinned, the other one is not.
  const char* const either = "4r1k1/8/8/8/5p2/7N/4N3/4K3 w -";
  EXPECT_EQ(Run(either, 4000, 4001), StaticScore(either));
  // A losing capture is not searched either, but it is a legal one.
  const std::int32_t eval = StaticScore("4k3/8/2p5/3p4/8/8/8/3RK3 w -");
  EXPECT_EQ(Run("4k3/8/2p5/3p4/8/8/8/3RK3 w -", eval, eval + 1), eval);
}

// With alpha far above the static score every capture is pruned, and the result
// shows whether one of them is legal.
TEST_F(Quiescence, OneLegalOneOfThePrunedCapturesKeepsTheStaticScore) {
  struct Case {
    const char* position;
    bool legal;
  };
  for (const Case& c : {
           Case{"7k/8/8/8/8/8/4p3/4K3 w -", true},  // the king takes a pawn
           {"4r2k/8/8/8/8/8/4p3/4K3 w -", false},   // which a rook defends
           {"4k3/4P3/8/8/8/8/8/4R2K b -", false},
           {"7k/8/8/b7/8/1p6/3N4/4K3 w -", false},    // pinned on a diagonal
           {"7k/8/8/b7/1N6/3p4/8/4K3 w -", false},    // the same farther from the king
           {"7k/p7/8/8/n7/8/1N6/4K3 w -", true},      // on no line with the king
           {"7k/8/8/8/1p6/3N4/8/3K4 w -", true},      // on a line without an attacker
           {"4r2k/8/8/8/8/8/4R3/4K3 w -", true},      // takes what pins it
           {"r3r2k/8/8/n7/8/1N6/4Q3/4K3 w -", true},  // two pieces can take, neither is pinned
           {"4r2k/8/8/8/2p5/8/4N2p/4K3 w -", true},   // nothing to take
       }) {
    const std::int32_t eval = StaticScore(c.position);
    ASSERT_NE(eval, 0) << c.position;
    EXPECT_EQ(Run(c.position, 4000, 4001), c.legal ? eval : 0) << c.position;
    EXPECT_EQ(state.nodeCount, 0U) << c.position;
  }
}

TEST_F(Quiescence, EnPassantAloneCountsWhenItIsLegal) {
  struct Case {
    const char* position;
    bool legal;
  };
  // In each position e5xd6 is the only capture.
  for (const Case& c : {
           Case{"7k/8/8/3pP3/8/8/8/4K3 w -", true},
           {"7k/8/8/K2pP2r/8/8/8/8 w -", false},   // both pawns leave the rank
           {"b6k/8/8/3pP3/8/8/8/7K w -", false},   // the pawn taken blocked the bishop
           {"3r3k/8/8/3pP3/8/8/8/3K4 w -", true},  // the capturing pawn blocks the rook now
           {"8/6bk/8/3pP3/8/8/1K6/8 w -", false},  // a pinned pawn
       }) {
    SetEnPassant(c.position);
    EvalRecord record;
    const std::int32_t eval = Evaluate(record, board, white);
    ASSERT_NE(eval, 0) << c.position;
    state = SearchState{};
    EXPECT_EQ(Quiesce(state, board, 4000, 4001, 0), c.legal ? eval : 0) << c.position;
    EXPECT_EQ(state.nodeCount, 0U) << c.position;
  }
}

TEST_F(Quiescence, EnPassantIsTakenForAPawn) {
  for (const std::int32_t beyond : {200, 201}) {
    SetEnPassant("7k/8/8/3pP3/8/8/8/4K3 w -");
    EvalRecord record;
    const std::int32_t alpha = Evaluate(record, board, white) + beyond;
    state = SearchState{};
    Quiesce(state, board, alpha, alpha + 1, 0);
    EXPECT_EQ(state.nodeCount, beyond == 200 ? 1U : 0U);
  }
}

TEST_F(Quiescence, APrunedCaptureCountsWhereTheOthersAreIllegal) {
  // The knight on e2 is pinned: it may not take the queen, nor the pawn. Whether
  // the other knight may take the pawn makes the difference.
  for (const auto& [position, legal] : {std::pair{"4r1k1/8/8/8/3q1p2/8/4N3/4K3 w -", false},
                                        {"4r1k1/8/8/8/3q1p2/7N/4N3/4K3 w -", true}}) {
    const std::int32_t eval = StaticScore(position);
    const std::int32_t alpha = eval + 600;  // out of reach of a pawn, not of a queen
    EXPECT_EQ(Run(position, alpha, alpha + 1), legal ? eval : 0) << position;
    EXPECT_EQ(state.nodeCount, 0U) << position;
  }
}

TEST_F(Quiescence, WherePiecesShareASquareAPrunedCaptureIsMadeToKnowItsLegality) {
  // A white knight and a black pawn share e4. If the other knight takes the pawn,
  // the two knights remove each other and nothing blocks the rook any more.
  const char* const position = "7k/4r3/5N2/8/4N2-p/8/8/4K3 w -";
  ASSERT_NE(StaticScore(position), 0);
  ASSERT_EQ(board.hasOverlaps, 1);
  EXPECT_EQ(Run(position, 4000, 4001), 0);
}

TEST_F(Quiescence, InCheckALosingCaptureComesAtItsLoss) {
  // The queen can take the checking knight, which a pawn defends. The king's step
  // to d1 comes first and refutes.
  HistoryTable[white][4][3] = 7;  // e1d1
  const char* const check = "6k1/8/8/8/6p1/5n2/8/4KQ2 w -";
  Run(check, -5001, -5000);
  EXPECT_EQ(state.nodeCount, 1U);
  test::SetPosition(board, check);
  MakeMove(board, BuildMove(4, 3, white, king));
  EXPECT_EQ(HashSlot(EvalHashTable, board.positionKey).key, board.positionKey);
}

TEST_F(Quiescence, InCheckNoCaptureIsPruned) {
  // The king takes the pawn that gives check, or steps to d1, f1 or f2.
  Run("4r1k1/8/8/8/8/8/3p4/4K3 w -", 5000, 5001);
  EXPECT_EQ(state.nodeCount, 4U);
}

TEST_F(Quiescence, InCheckTheStaticScoreIsTheLeastThatIsReturned) {
  // The knight's fork wins the queen in any case.
  const char* const fork = "k7/8/8/8/8/5n2/3Q4/6K1 w -";
  EXPECT_EQ(Run(fork, -open, open), StaticScore(fork));
  EXPECT_GT(state.nodeCount, 4U);
}

TEST_F(Quiescence, InCheckAlphaStaysBelowTheStaticScore) {
  // After each step of the king Black's window is open enough for a capture
  // that loses the rook for a guarded pawn.
  const char* const check = "1r2r1k1/8/8/8/8/1P6/P7/4K3 w -";
  const std::int32_t eval = StaticScore(check);
  Run(check, eval - 500, eval + 1);
  EXPECT_GT(state.nodeCount, 4U);
}

TEST_F(Quiescence, InCheckQuietMovesFollowTheirHistory) {
  // The last of the king's steps in generation order refutes at once.
  HistoryTable[white][4][3] = 7;  // e1d1
  Run("4r1k1/8/8/8/8/8/8/4K3 w -", -5001, -5000);
  EXPECT_EQ(state.nodeCount, 1U);
  test::SetPosition(board, "4r1k1/8/8/8/8/8/8/4K3 w -");
  MakeMove(board, BuildMove(4, 3, white, king));
  EXPECT_EQ(HashSlot(EvalHashTable, board.positionKey).key, board.positionKey);
}

TEST_F(Quiescence, ALosingPromotionCaptureDoesNotEndTheLoop) {
  // b7xa8 promotes; the exchange value leaves the new queen out.
  const std::string position = "r3k3/1P6/8/8/8/8/8/4K3 w -";
  const std::int32_t eval = StaticScore(position);
  Run(position, eval, eval + 1);
  EXPECT_GT(state.nodeCount, 0U);
}

TEST_F(Quiescence, CountsItsMovesApart) {
  searchStats = SearchStats{};
  Run("4k3/8/8/3q4/8/8/8/3RK3 w -", -open, open);
  EXPECT_EQ(searchStats.nQSNodes, 1);
  EXPECT_EQ(searchStats.nNodes, 0);
}

TEST_F(Quiescence, LeavesTheBoardAsItWas) {
  const std::string position = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq";
  Run(position, -open, open);
  Board fresh;
  test::SetPosition(fresh, position);
  EXPECT_EQ(board.positionKey, fresh.positionKey);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.historyIndex, 0);
}

TEST_F(Quiescence, BoardsFullOfQueensEnd) {
  // A line of captures of any length overflows no array.
  test::SetPosition(board, "qqqqqqqk/8/8/8/8/8/8/QQQQQQQK w -");
  state = SearchState{};
  Quiesce(state, board, -1, 0, 0);
  EXPECT_EQ(board.undoDepth, 0);
}

}  // namespace
}  // namespace mirvo
