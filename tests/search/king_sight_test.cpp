#include "search/king_sight.h"

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

/// Asks about every generated move and compares with what making it shows.
void CompareWithMaking(Board& board, Counts& counts) {
  const std::vector<Move> moves = test::AllMoves(board);
  const KingSight sight(board, InCheck(board, board.sideToMove));
  for (const Move move : moves) {
    const Foresight foresight = sight.Foresee(move);
    const bool check = foresight == Foresight::legal && sight.GivesCheck(move);
    if (foresight == Foresight::unknown) {
      ++counts.unknown;
      continue;
    }
    MakeMove(board, move);
    const bool legal = !MoverLeftInCheck(board);
    const bool attacked = InCheck(board, board.sideToMove);
    UnmakeMove(board);
    ASSERT_EQ(foresight == Foresight::legal, legal)
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

TEST(KingSight, AgreesWithMakingTheMoveInRandomGames) {
  Counts counts;
  test::PlayRandomGames(20261121, 60, 160,
                        [&counts](Board& board) { CompareWithMaking(board, counts); });
  EXPECT_GT(counts.legal, 50000);
  EXPECT_GT(counts.illegal, 1000);
  EXPECT_GT(counts.checks, 500);
  EXPECT_LT(counts.unknown, counts.legal / 10);
}

struct SightCase {
  const char* name;
  const char* fen;
  const char* move;
  Foresight foresight;
  bool check;
};

class KingSightOfMove : public testing::TestWithParam<SightCase> {};

TEST_P(KingSightOfMove, IsForeseen) {
  const SightCase& c = GetParam();
  Board board = test::BoardFrom(c.fen);
  const Move move = test::FindMove(board, c.move);
  const KingSight sight(board, InCheck(board, board.sideToMove));
  EXPECT_EQ(sight.Foresee(move), c.foresight);
  if (c.foresight == Foresight::legal) {
    EXPECT_EQ(sight.GivesCheck(move), c.check);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Moves, KingSightOfMove,
    testing::Values(
        SightCase{"quiet", "4k3/8/8/8/8/8/8/R3K3 w -", "a1a7", Foresight::legal, false},
        SightCase{"check", "4k3/8/8/8/8/8/8/R3K3 w -", "a1a8", Foresight::legal, true},
        SightCase{"firstSquare", "4k3/8/8/8/8/8/8/1R2K3 w -", "b1a1", Foresight::legal, false},
        SightCase{"lastSquare", "4k2r/8/8/8/8/8/8/4K2R w -", "h1h8", Foresight::legal, true},
        SightCase{"pinned", "4k3/4r3/8/8/8/8/4N3/4K3 w -", "e2c3", Foresight::unknown, false},
        SightCase{"uncovers", "4k3/8/8/4N3/8/8/8/K3R3 w -", "e5c4", Foresight::unknown, false},
        SightCase{"kingUncovers", "4k3/8/8/8/8/8/4K3/4R3 w -", "e2d2", Foresight::unknown, false},
        SightCase{"castling", "4k3/8/8/8/8/8/8/4K2R w K", "e1g1", Foresight::unknown, false},
        SightCase{"enPassant", "4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", Foresight::unknown, false},
        SightCase{"promotion", "8/1P6/8/1k6/8/8/8/4K3 w -", "b7b8q", Foresight::unknown, false},
        SightCase{"kingIntoAttack", "3rk3/8/8/8/8/8/8/4K3 w -", "e1d1", Foresight::illegal, false},
        SightCase{"kingTakesGuarded", "3rk3/8/8/8/8/8/3n4/4K3 w -", "e1d2", Foresight::illegal,
                  false},
        SightCase{"kingBackAlongTheRay", "k3r3/8/8/8/4K3/8/8/8 w -", "e4e3", Foresight::illegal,
                  false},
        SightCase{"kingOffTheRay", "k3r3/8/8/8/4K3/8/8/8 w -", "e4d3", Foresight::legal, false},
        SightCase{"blocks", "k3r3/8/8/8/7R/8/8/4K3 w -", "h4e4", Foresight::legal, false},
        SightCase{"doesNotBlock", "k3r3/8/8/8/7R/8/8/4K3 w -", "h4d4", Foresight::illegal, false},
        SightCase{"takesTheChecker", "k3r2R/8/8/8/8/8/8/4K3 w -", "h8e8", Foresight::legal, true},
        SightCase{"doubleCheck", "k3r3/8/8/8/8/5n2/7R/4K3 w -", "h2e2", Foresight::illegal, false}),
    [](const auto& instance) { return instance.param.name; });

// Without a king the square h8 stands for it; with two, the higher one.
TEST(KingSight, KnowsNothingUnlessEachSideHasOneKing) {
  for (const char* fen :
       {"4k3/8/8/8/8/8/8/R2KK3 w -", "4k3/8/8/8/8/8/8/R2KK3 b -", "R6k/8/8/8/8/8/8/8 w -",
        "R6k/8/8/8/8/8/8/8 b -", "8/8/8/8/8/8/8/8 w -", "7r/6P1/8/8/8/8/4K3/4R3 w -"}) {
    Board board = test::BoardFrom(fen);
    const KingSight sight(board, InCheck(board, board.sideToMove));
    for (const Move move : test::AllMoves(board)) {
      EXPECT_EQ(sight.Foresee(move), Foresight::unknown) << fen << ' ' << test::TextOf(move);
    }
  }
}

// Then any move may leave that king attacked.
TEST(KingSight, KnowsNothingWhereTheEnemyKingCouldBeTaken) {
  for (const char* fen :
       {"4k3/8/8/8/8/8/8/K3R3 w -", "4k3/8/8/8/B7/8/8/K7 w -", "4k3/3P4/8/8/8/8/8/K7 w -",
        "4k3/8/3N4/8/8/8/8/K7 w -", "4k3/8/8/4Q3/8/8/8/K7 w -", "8/8/3kK3/8/8/8/4r3/R7 b -"}) {
    Board board = test::BoardFrom(fen);
    const KingSight sight(board, InCheck(board, board.sideToMove));
    for (const Move move : test::AllMoves(board)) {
      EXPECT_EQ(sight.Foresee(move), Foresight::unknown) << fen << ' ' << test::TextOf(move);
    }
  }
}

}  // namespace
}  // namespace mirvo
