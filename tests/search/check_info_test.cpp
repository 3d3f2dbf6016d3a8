#include "search/check_info.h"

#include <gtest/gtest.h>

#include "board/attacks.h"
#include "board/make_move.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

struct Counts {
  int legal = 0;
  int illegal = 0;
  int unknown = 0;
  int checks = 0;
};

/// Compares the answers for every generated move with those of making it.
void CompareWithMaking(Board& board, Counts& counts) {
  const std::vector<Move> moves = test::AllMoves(board);
  const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
  for (const Move move : moves) {
    const Legality legality = checkInfo.LegalityOf(move);
    const bool check = legality == Legality::legal && checkInfo.GivesCheck(move);
    if (legality == Legality::unknown) {
      ++counts.unknown;
      continue;
    }
    MakeMove(board, move);
    const bool legal = !MoverLeftInCheck(board);
    const bool attacked = InCheck(board, board.sideToMove);
    UnmakeMove(board);
    ASSERT_EQ(legality == Legality::legal, legal)
        << test::PlacementOf(board) << ' ' << test::TextOf(move);
    if (!legal) {
      ++counts.illegal;
      continue;
    }
    ASSERT_EQ(check, attacked) << test::PlacementOf(board) << ' ' << test::TextOf(move);
    ++counts.legal;
    counts.checks += check ? 1 : 0;
  }
}

TEST(CheckInfo, AgreesWithMakingTheMoveInRandomGames) {
  Counts counts;
  test::PlayRandomGames(20261121, 60, 160,
                        [&counts](Board& board) { CompareWithMaking(board, counts); });
  EXPECT_GT(counts.legal, 50000);
  EXPECT_GT(counts.illegal, 1000);
  EXPECT_GT(counts.checks, 500);
  EXPECT_LT(counts.unknown, counts.legal / 10);
}

struct LegalityCase {
  const char* name;
  const char* fen;
  const char* move;
  Legality legality;
  bool check;
};

class CheckInfoOfMove : public testing::TestWithParam<LegalityCase> {};

TEST_P(CheckInfoOfMove, IsKnown) {
  const LegalityCase& c = GetParam();
  Board board = test::BoardFrom(c.fen);
  const Move move = test::FindMove(board, c.move);
  const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
  EXPECT_EQ(checkInfo.LegalityOf(move), c.legality);
  if (c.legality == Legality::legal) {
    EXPECT_EQ(checkInfo.GivesCheck(move), c.check);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Moves, CheckInfoOfMove,
    testing::Values(
        LegalityCase{"quiet", "4k3/8/8/8/8/8/8/R3K3 w -", "a1a7", Legality::legal, false},
        LegalityCase{"check", "4k3/8/8/8/8/8/8/R3K3 w -", "a1a8", Legality::legal, true},
        LegalityCase{"firstSquare", "4k3/8/8/8/8/8/8/1R2K3 w -", "b1a1", Legality::legal, false},
        LegalityCase{"lastSquare", "4k2r/8/8/8/8/8/8/4K2R w -", "h1h8", Legality::legal, true},
        LegalityCase{"pinned", "4k3/4r3/8/8/8/8/4N3/4K3 w -", "e2c3", Legality::unknown, false},
        LegalityCase{"uncovers", "4k3/8/8/4N3/8/8/8/K3R3 w -", "e5c4", Legality::unknown, false},
        LegalityCase{"kingUncovers", "4k3/8/8/8/8/8/4K3/4R3 w -", "e2d2", Legality::unknown, false},
        LegalityCase{"castling", "4k3/8/8/8/8/8/8/4K2R w K", "e1g1", Legality::unknown, false},
        LegalityCase{"enPassant", "4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", Legality::unknown,
                     false},
        LegalityCase{"promotion", "8/1P6/8/1k6/8/8/8/4K3 w -", "b7b8q", Legality::unknown, false},
        LegalityCase{"kingIntoAttack", "3rk3/8/8/8/8/8/8/4K3 w -", "e1d1", Legality::illegal,
                     false},
        LegalityCase{"kingTakesGuarded", "3rk3/8/8/8/8/8/3n4/4K3 w -", "e1d2", Legality::illegal,
                     false},
        LegalityCase{"kingBackAlongTheRay", "k3r3/8/8/8/4K3/8/8/8 w -", "e4e3", Legality::illegal,
                     false},
        LegalityCase{"kingOffTheRay", "k3r3/8/8/8/4K3/8/8/8 w -", "e4d3", Legality::legal, false},
        LegalityCase{"blocks", "k3r3/8/8/8/7R/8/8/4K3 w -", "h4e4", Legality::legal, false},
        LegalityCase{"doesNotBlock", "k3r3/8/8/8/7R/8/8/4K3 w -", "h4d4", Legality::illegal, false},
        LegalityCase{"takesTheChecker", "k3r2R/8/8/8/8/8/8/4K3 w -", "h8e8", Legality::legal, true},
        LegalityCase{"doubleCheck", "k3r3/8/8/8/8/5n2/7R/4K3 w -", "h2e2", Legality::illegal,
                     false}),
    [](const auto& instance) { return instance.param.name; });

// Without a king, h8 is used; with two, the higher square.
TEST(CheckInfo, KnowsNothingUnlessEachSideHasOneKing) {
  for (const char* fen :
       {"4k3/8/8/8/8/8/8/R2KK3 w -", "4k3/8/8/8/8/8/8/R2KK3 b -", "R6k/8/8/8/8/8/8/8 w -",
        "R6k/8/8/8/8/8/8/8 b -", "8/8/8/8/8/8/8/8 w -", "7r/6P1/8/8/8/8/4K3/4R3 w -"}) {
    Board board = test::BoardFrom(fen);
    const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
    for (const Move move : test::AllMoves(board)) {
      EXPECT_EQ(checkInfo.LegalityOf(move), Legality::unknown) << fen << ' ' << test::TextOf(move);
    }
  }
}

// In such positions any move may leave that king attacked.
TEST(CheckInfo, KnowsNothingWhereTheEnemyKingCouldBeTaken) {
  for (const char* fen :
       {"4k3/8/8/8/8/8/8/K3R3 w -", "4k3/8/8/8/B7/8/8/K7 w -", "4k3/3P4/8/8/8/8/8/K7 w -",
        "4k3/8/3N4/8/8/8/8/K7 w -", "4k3/8/8/4Q3/8/8/8/K7 w -", "8/8/3kK3/8/8/8/4r3/R7 b -"}) {
    Board board = test::BoardFrom(fen);
    const CheckInfo checkInfo(board, InCheck(board, board.sideToMove));
    for (const Move move : test::AllMoves(board)) {
      EXPECT_EQ(checkInfo.LegalityOf(move), Legality::unknown) << fen << ' ' << test::TextOf(move);
    }
  }
}

}  // namespace
}  // namespace mirvo
