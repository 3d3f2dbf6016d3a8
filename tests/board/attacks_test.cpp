#include "board/attacks.h"

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "tests/support/board_support.h"
#include "tests/support/mailbox.h"

namespace mirvo {
namespace {

Bitboard AttackedBy(const Board& board, int side) {
  Bitboard set = 0;
  for (int square = 0; square < nSquares; ++square) {
    if (SquareAttacked(board, side, square)) set |= Bit(square);
    EXPECT_EQ(SquareAttacked(board, side, square),
              SquareAttacked(board, side, square / 8, square % 8));
  }
  return set;
}

TEST(SquareAttacked, EachKindAlone) {
  const struct {
    const char* fen;
    const char* attacked;
  } cases[] = {
      {"8/8/8/8/8/8/4P3/8 w -", "d3 f3"},
      {"8/8/8/8/8/7P/8/8 w -", "g4"},
      {"8/8/8/8/4N3/8/8/8 w -", "d2 f2 c3 g3 c5 g5 d6 f6"},
      {"8/8/8/8/8/8/1B6/8 w -", "a1 c1 a3 c3 d4 e5 f6 g7 h8"},
      {"8/8/8/8/8/8/8/R1n5 w -", "b1 c1 a2 a3 a4 a5 a6 a7 a8"},
      {"8/8/8/8/8/8/1p6/Q1n5 w -", "b1 c1 a2 b2 a3 a4 a5 a6 a7 a8"},
      {"8/8/8/8/8/8/8/K7 w -", "b1 a2 b2"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(test::NamesOf(AttackedBy(test::BoardFrom(c.fen), white)), c.attacked) << c.fen;
  }
  EXPECT_EQ(test::NamesOf(AttackedBy(test::BoardFrom("8/4p3/8/8/8/8/8/8 b -"), black)), "d6 f6");
}

TEST(SquareAttacked, AgreesWithTheMailboxOnRandomPositions) {
  test::PlayRandomGames(31, 12, 60, [](const Board& board) {
    const test::Mailbox mailbox(test::PlacementOf(board));
    for (int square = 0; square < nSquares; ++square) {
      ASSERT_EQ(SquareAttacked(board, white, square), mailbox.Attacks('w', square % 8, square / 8));
      ASSERT_EQ(SquareAttacked(board, black, square), mailbox.Attacks('b', square % 8, square / 8));
    }
  });
}

TEST(InCheck, RemembersTheAnswerForTheSideToMove) {
  Board board = test::BoardFrom("4k3/8/8/8/8/8/8/4R1K1 b -");
  EXPECT_EQ(board.inCheckCache, -1);
  EXPECT_TRUE(InCheck(board, black));
  EXPECT_EQ(board.inCheckCache, 1);
  // From now on the stored answer counts.
  board.inCheckCache = 0;
  EXPECT_FALSE(InCheck(board, black));
}

// The rook covers its own king in one case and not in the other.
TEST(InCheck, OfTheOtherSideIsThatOfItsOwnKing) {
  Board attacked = test::BoardFrom("4k3/8/8/8/8/8/6K1/4R3 w -");
  EXPECT_TRUE(InCheck(attacked, black));
  Board spared = test::BoardFrom("3k4/8/8/8/8/8/8/4R1K1 w -");
  EXPECT_FALSE(InCheck(spared, black));
}

TEST(InCheck, ComputesAfreshForTheOtherSide) {
  Board board = test::BoardFrom("4k3/8/8/8/8/8/8/4R1K1 w -");
  EXPECT_TRUE(InCheck(board, black));
  EXPECT_EQ(board.inCheckCache, -1);
  EXPECT_FALSE(InCheck(board, white));
  EXPECT_EQ(board.inCheckCache, 0);
  EXPECT_TRUE(InCheck(board, black));
}

TEST(InCheck, ForgetsTheAnswerWithEveryMove) {
  Board board = test::BoardFrom(test::startFen);
  board.inCheckCache = 0;
  const Move move = test::FindMove(board, "e2e4");
  board.inCheckCache = 0;
  MakeMove(board, move);
  EXPECT_EQ(board.inCheckCache, -1);
  board.inCheckCache = 1;
  UnmakeMove(board);
  EXPECT_EQ(board.inCheckCache, -1);
  board.inCheckCache = 1;
  MakeNullMove(board);
  EXPECT_EQ(board.inCheckCache, -1);
  board.inCheckCache = 1;
  UnmakeNullMove(board);
  EXPECT_EQ(board.inCheckCache, -1);
}

TEST(MoverLeftInCheck, TellsIllegalMovesFromLegalOnes) {
  // The bishop on e2 is pinned; moves along the pin are legal for a rook only.
  Board board = test::BoardFrom("4r1k1/8/8/8/8/8/4B3/4K3 w -");
  MakeMove(board, test::FindMove(board, "e2d3"));
  EXPECT_TRUE(MoverLeftInCheck(board));
  UnmakeMove(board);
  MakeMove(board, test::FindMove(board, "e1d1"));
  EXPECT_FALSE(MoverLeftInCheck(board));
}

TEST(KingAndPinned, AreTheKingAndWhatMayBePinnedToIt) {
  const struct {
    const char* fen;
    const char* squares;
  } cases[] = {
      {"4k3/8/8/8/8/8/8/4K3 w -", "e1"},
      {"4k3/8/8/8/4r3/8/1N2P3/4K1B1 w -", "e1 e2"},
      {"4k3/8/8/8/4r3/4N3/1N2P3/4K1B1 w -", "e1"},
      {"4k3/8/8/b7/8/8/3N4/4K3 w -", "e1 d2"},
      {"4k3/8/8/q7/8/2P5/3N4/q1N1K1Bq w -", "c1 e1 g1"},
      // A slider of the other kind sees nothing along the line.
      {"4k3/8/8/r7/4b3/8/3NP3/4K3 w -", "e1"},
      {"4k3/8/8/b7/8/4r3/8/4KB2 w -", "all"},
      {"4k3/8/8/8/8/8/3NP3/4K2b w -", "e1"},
      {"4k3/8/8/8/8/8/8/8 w -", "all"},
      {"4k3/8/8/8/8/8/8/K1K5 w -", "all"},
  };
  for (const auto& c : cases) {
    Board board = test::BoardFrom(c.fen);
    const Bitboard kingAndPinned = KingAndPinned(board, white);
    EXPECT_EQ(kingAndPinned == ~Bitboard{0} ? "all" : test::NamesOf(kingAndPinned), c.squares)
        << c.fen;
  }
}

TEST(KingAndPinned, MovesFromOtherSquaresAreLegal) {
  int nOthers = 0;
  test::PlayRandomGames(33, 24, 100, [&nOthers](Board& board) {
    const Bitboard kingAndPinned = KingAndPinned(board, board.sideToMove);
    for (const Move move : test::AllMoves(board)) {
      if ((kingAndPinned & Bit(FromSquare(move))) != 0) continue;
      ++nOthers;
      MakeMove(board, move);
      ASSERT_FALSE(MoverLeftInCheck(board)) << test::TextOf(move);
      UnmakeMove(board);
    }
  });
  EXPECT_GT(nOthers, 10000);
}

// Two pieces leave the board's lines at once.
TEST(KingAndPinned, EnPassantMayOpenARankThroughTwoSquares) {
  Board board = test::BoardFrom("8/8/8/K2pP2r/8/8/8/4k3 w - d6");
  const Move move = test::FindMove(board, "e5d6");
  EXPECT_NE(KingAndPinned(board, white) & Bit(FromSquare(move)), 0U);
  MakeMove(board, move);
  EXPECT_TRUE(MoverLeftInCheck(board));
}

}  // namespace
}  // namespace mirvo
