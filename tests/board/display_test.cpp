#include "board/display.h"

#include <gtest/gtest.h>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

std::string Printed(const Board& board, BoardLayout layout, bool quiet = false) {
  CaptureStdout();
  PrintBoard(board, layout, quiet);
  return GetCapturedStdout();
}

TEST(PrintBoard, CompactLayoutOfTheInitialPosition) {
  EXPECT_EQ(Printed(test::BoardFrom(test::startFen), BoardLayout::compact),
            "\n |abcdefgh\n"
            "-----------\n"
            "8|rnbqkbnr|\n"
            "7|pppppppp|\n"
            "6|........|\n"
            "5|........|\n"
            "4|........|\n"
            "3|........|\n"
            "2|PPPPPPPP|\n"
            "1|RNBQKBNR|\n"
            "-----------\n"
            "\n");
}

TEST(PrintBoard, WideLayoutOfTheInitialPosition) {
  EXPECT_EQ(Printed(test::BoardFrom(test::startFen), BoardLayout::wide),
            "\n |a b c d e f g h \n"
            "-------------------\n"
            "8|r n b q k b n r \n"
            " |\n"
            "7|p p p p p p p p \n"
            " |\n"
            "6|. . . . . . . . \n"
            " |\n"
            "5|. . . . . . . . \n"
            " |\n"
            "4|. . . . . . . . \n"
            " |\n"
            "3|. . . . . . . . \n"
            " |\n"
            "2|P P P P P P P P \n"
            " |\n"
            "1|R N B Q K B N R \n"
            " |\n"
            "-------------------\n"
            "\n");
}

TEST(PrintBoard, QuietPrintsNothing) {
  const Board board = test::BoardFrom(test::startFen);
  EXPECT_EQ(Printed(board, BoardLayout::compact, true), "");
  EXPECT_EQ(Printed(board, BoardLayout::wide, true), "");
}

TEST(PrintBoard, TwoPiecesOnASquareBothShowInBitboardOrder) {
  Board board = test::BoardFrom("8/8/8/8/8/8/8/8 w -");
  board.pieces[PieceIndex(black, queen)] = Bit(56);
  board.pieces[PieceIndex(white, pawn)] = Bit(56);
  EXPECT_NE(Printed(board, BoardLayout::wide).find("8|P q . . . . . . . \n"), std::string::npos);
  EXPECT_NE(Printed(board, BoardLayout::compact).find("8|Pq.......|\n"), std::string::npos);
}

TEST(FormatBoard, AllTwelvePiecesOnEverySquareFit) {
  Board board;
  for (std::uint64_t& set : board.pieces) set = ~std::uint64_t{0};
  for (const BoardLayout layout : {BoardLayout::wide, BoardLayout::compact}) {
    char text[diagramCapacity];
    FormatBoard(board, layout, text);
    const std::string diagram = text;
    const char* const cell =
        layout == BoardLayout::wide ? "P N B R Q K p n b r q k " : "PNBRQKpnbrqk";
    std::string row = "1|";
    for (int file = 0; file < 8; ++file) row += cell;
    EXPECT_NE(diagram.find(row), std::string::npos);
    EXPECT_EQ(diagram.substr(diagram.size() - 4), "---\n");
  }
}

}  // namespace
}  // namespace mirvo
