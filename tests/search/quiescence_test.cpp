#include "search/quiescence.h"

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "eval/evaluate.h"
#include "search/hash_table.h"
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
  // A free queen is not even looked at.
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
  // The black king is hemmed in by its own blocked pawns and touched by the
  // white king: not one move is generated.
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
  // A pawn hangs; alpha lies beyond static score + pawn + margin.
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

TEST_F(Quiescence, CapturesThatAreLeftOutCountWhenTheyAreLegal) {
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

TEST_F(Quiescence, InCheckNoCaptureIsLeftOut) {
  // The king takes the pawn that gives check, or steps to d1, f1 or f2.
  Run("4r1k1/8/8/8/8/8/3p4/4K3 w -", 5000, 5001);
  EXPECT_EQ(state.nodeCount, 4U);
}

TEST_F(Quiescence, InCheckTheStaticScoreIsTheLeastThatIsReturned) {
  // The knight's fork wins the queen whatever White does.
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
  // b7xa8 promotes; the exchange alone says nothing of the new queen.
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
  // The horizon swallows any number of captures without leaving its arrays.
  test::SetPosition(board, "qqqqqqqk/8/8/8/8/8/8/QQQQQQQK w -");
  state = SearchState{};
  Quiesce(state, board, -1, 0, 0);
  EXPECT_EQ(board.undoDepth, 0);
}

}  // namespace
}  // namespace mirvo
