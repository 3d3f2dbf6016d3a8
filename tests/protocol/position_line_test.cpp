#include "protocol/position_line.h"

#include <gtest/gtest.h>

#include <string>

#include "board/fen.h"
#include "board/make_move.h"
#include "protocol/xboard_play.h"

namespace mirvo {
namespace {

std::string LineOf(const char* placement, const char* side, const char* castling) {
  static Board board;
  BeginFromFen(placement, side, castling, board);
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  return text;
}

TEST(PositionLine, WritesPlacementSideAndCastling) {
  EXPECT_EQ(LineOf("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R", "w", "KQkq"),
            "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -\n");
  EXPECT_EQ(LineOf("8/8/8/8/8/8/8/k6K", "b", "-"), "8/8/8/8/8/8/8/k6K b - -\n");
}

TEST(PositionLine, NamesEachRightAlone) {
  for (const char* right : {"K", "Q", "k", "q", "Kq", "Qk", "KQk"}) {
    EXPECT_EQ(LineOf("r3k2r/8/8/8/8/8/8/R3K2R", "w", right),
              std::string("r3k2r/8/8/8/8/8/8/R3K2R w ") + right + " -\n");
  }
}

TEST(PositionLine, NeverNamesAnEnPassantSquare) {
  static Board board;
  BeginFromFen("4k3/8/8/8/3p4/8/4P3/4K3", "w", "-", board);
  MakeMove(board, CompleteTextMove("e2e4", board));
  ASSERT_TRUE(HasEnPassant(board));
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  EXPECT_STREQ(text, "4k3/8/8/8/3pP3/8/8/4K3 b - -\n");
}

TEST(PositionLine, LosesRightsWithTheKingAndRookThatMove) {
  static Board board;
  BeginFromFen("r3k2r/8/8/8/8/8/8/R3K2R", "w", "KQkq", board);
  MakeMove(board, CompleteTextMove("h1h4", board));
  MakeMove(board, CompleteTextMove("e8c8", board));
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  EXPECT_STREQ(text, "2kr3r/8/8/8/7R/8/8/R3K3 w Q -\n");
}

TEST(PositionLine, LosesTheRightWhoseRookIsTaken) {
  static Board board;
  BeginFromFen("r3k2r/8/8/8/8/8/8/R3K2R", "w", "KQkq", board);
  MakeMove(board, CompleteTextMove("h1h8", board));
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  EXPECT_STREQ(text, "r3k2R/8/8/8/8/8/8/R3K3 b Qq -\n");
}

TEST(PositionLine, NamesNoRightWithoutKingAndRookAtHome) {
  EXPECT_EQ(LineOf("r2k3r/8/8/8/8/8/8/1R2K1R1", "w", "KQkq"), "r2k3r/8/8/8/8/8/8/1R2K1R1 w - -\n");
}

TEST(PositionLine, FitsABoardThatTextInputHasSpoiled) {
  static Board board;
  BeginFromStart(board);
  for (Bitboard& pieces : board.pieces) pieces = ~Bitboard{0};
  board.occupied = ~Bitboard{0};
  char text[positionLineCapacity];
  FormatPositionLine(board, text);
  EXPECT_LT(std::string(text).size(), positionLineCapacity);
}

}  // namespace
}  // namespace mirvo
