#include "board/legal_moves.h"

#include <gtest/gtest.h>

#include <set>

#include "board/notation.h"
#include "tests/support/board_support.h"
#include "tests/support/mailbox.h"

namespace mirvo {
namespace {

std::vector<Move> Walk(Board& board) {
  std::vector<Move> moves;
  ForEachLegalMove(board, [&moves](Move move) {
    moves.push_back(move);
    return false;
  });
  return moves;
}

struct PositionCase {
  const char* name;
  const char* fen;
  int nLegal;
};

class LegalMovesOf : public testing::TestWithParam<PositionCase> {};

TEST_P(LegalMovesOf, AreCountedWalkedAndBeginWithTheFirst) {
  Board board = test::BoardFrom(GetParam().fen);
  const std::vector<Move> moves = Walk(board);
  EXPECT_EQ(CountLegalMoves(board), GetParam().nLegal);
  EXPECT_EQ(static_cast<int>(moves.size()), GetParam().nLegal);
  EXPECT_EQ(FirstLegalMove(board), moves.empty() ? noMove : moves.front());
}

// The counts are those of the published perft tables at depth 1 or taken by hand.
INSTANTIATE_TEST_SUITE_P(
    Positions, LegalMovesOf,
    testing::Values(PositionCase{"start", test::startFen, 20},
                    PositionCase{"kiwipete", test::kiwipeteFen, 48},
                    PositionCase{"rookEnding", "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -", 14},
                    PositionCase{"stalemate", "7k/5Q2/6K1/8/8/8/8/8 b -", 0},
                    PositionCase{"mate", "7k/6Q1/6K1/8/8/8/8/8 b -", 0},
                    PositionCase{"doubleCheck", "4k3/8/3N4/8/8/8/8/4R1K1 b -", 3},
                    PositionCase{"enPassantUncoversTheRank", "8/8/8/KPp4r/8/8/8/7k w - c6", 4}),
    [](const auto& c) { return c.param.name; });

TEST(LegalMoves, AreThoseOfTheMailboxInRandomGames) {
  for (const char* fen : {test::startFen, test::kiwipeteFen}) {
    Board board = test::BoardFrom(fen);
    std::set<std::string> texts;
    for (const Move move : Walk(board)) texts.insert(test::TextOf(move));
    EXPECT_EQ(texts, test::Mailbox(fen).LegalMoves());
  }
  test::PlayRandomGames(11, 12, 80, [](Board& board) {
    std::vector<Move> legal;
    for (const Move move : test::AllMoves(board)) {
      if (IsLegal(board, move)) legal.push_back(move);
    }
    ASSERT_EQ(legal, test::LegalMoves(board));
    ASSERT_EQ(legal, Walk(board));
  });
}

TEST(LegalMoves, TheWalkEndsWhenTheVisitorSaysSo) {
  Board board = test::BoardFrom(test::startFen);
  int nVisits = 0;
  ForEachLegalMove(board, [&nVisits](Move) { return ++nVisits == 3; });
  EXPECT_EQ(nVisits, 3);
}

TEST(LegalMoves, FirstIsACaptureWhereOneIsLegal) {
  Board board = test::BoardFrom("4k3/8/8/3p4/4P3/8/8/4K3 w -");
  EXPECT_EQ(test::TextOf(FirstLegalMove(board)), "e4d5");
  // The queen is guarded: taking it is offered by the generator and illegal.
  Board mated = test::BoardFrom("4k3/8/8/8/8/8/r2q4/3K4 w -");
  EXPECT_EQ(FirstLegalMove(mated), noMove);
}

TEST(LegalMoves, AMoveWordIsLegalBySquaresAndPromotion) {
  Board board = test::BoardFrom("8/P6k/8/8/8/8/8/4K3 w -");
  const auto word = [](const char* from, const char* to) {
    return BuildMove(test::Square(from), test::Square(to), white, pawn);
  };
  EXPECT_TRUE(IsLegalMove(board, word("a7", "a8") | PromotionBits(knight)));
  EXPECT_TRUE(IsLegalMove(board, word("a7", "a8") | PromotionBits(queen) | checkMark));
  EXPECT_FALSE(IsLegalMove(board, word("a7", "a8")));
  EXPECT_FALSE(IsLegalMove(board, word("a7", "a8") | PromotionBits(king)));
  EXPECT_FALSE(IsLegalMove(board, word("a7", "b8") | PromotionBits(queen)));
  EXPECT_FALSE(IsLegalMove(board, noMove));
}

TEST(LegalMoves, APinnedPieceMayNotLeaveTheLine) {
  Board board = test::BoardFrom("4k3/4r3/8/8/8/8/4N3/4K3 w -");
  EXPECT_FALSE(IsLegal(board, test::FindMove(board, "e2c3")));
  EXPECT_FALSE(IsLegalMove(board, test::FindMove(board, "e2c3")));
  EXPECT_TRUE(IsLegal(board, test::FindMove(board, "e1d1")));
}

TEST(LegalMoves, AskingChangesNothing) {
  for (const char* fen : {test::kiwipeteFen, "8/8/8/KPp4r/8/8/8/7k w - c6"}) {
    Board board = test::BoardFrom(fen);
    const test::Snapshot before(board);
    const Move first = FirstLegalMove(board);
    CountLegalMoves(board);
    IsLegalMove(board, first);
    IsLegal(board, first);
    board.inCheckCache = -1;
    EXPECT_TRUE(before.SameAs(board)) << fen;
  }
}

}  // namespace
}  // namespace mirvo
