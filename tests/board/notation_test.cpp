#include "board/notation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::Square;
using test::startFen;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(MoveToCoordinates, NamesBothSquares) {
  EXPECT_EQ(test::TextOf(BuildMove(Square("e2"), Square("e4"), white, pawn)), "e2e4");
  EXPECT_EQ(test::TextOf(BuildMove(Square("h8"), Square("a1"), black, queen) | captureFlag),
            "h8a1");
  EXPECT_EQ(test::TextOf(noMove), "a1a1");
}

TEST(MoveToCoordinates, AddsALowerCasePromotionLetter) {
  const Move move = BuildMove(Square("e7"), Square("e8"), white, pawn);
  EXPECT_EQ(test::TextOf(move | PromotionBits(queen)), "e7e8q");
  EXPECT_EQ(test::TextOf(move | PromotionBits(rook)), "e7e8r");
  EXPECT_EQ(test::TextOf(move | PromotionBits(bishop)), "e7e8b");
  EXPECT_EQ(test::TextOf(move | PromotionBits(knight)), "e7e8n");
  // The kind alone, without the flag, is no promotion.
  EXPECT_EQ(test::TextOf(move | Move{queen} << 21), "e7e8");
}

class MoveTextModes : public testing::Test {
 protected:
  const Move move = BuildMove(Square("g1"), Square("f3"), white, knight);
  char scratch[moveTextCapacity] = "old";
  char text[moveTextCapacity] = "";
};

TEST_F(MoveTextModes, BuildsIntoScratchAndCopies) {
  MoveToText(move, text, true, MoveTextMode::build, scratch);
  EXPECT_STREQ(text, "Nf3");
  EXPECT_STREQ(scratch, "Nf3");
  MoveToText(move, text, false, MoveTextMode::build, scratch);
  EXPECT_STREQ(text, "g1f3");
  EXPECT_STREQ(scratch, "g1f3");
}

TEST_F(MoveTextModes, CopyTakesTheScratchTextAsItIs) {
  CaptureStdout();
  MoveToText(move, text, true, MoveTextMode::copyScratch, scratch);
  EXPECT_STREQ(text, "old");
  EXPECT_STREQ(scratch, "old");
  MoveToText(move, nullptr, true, MoveTextMode::copyScratch, scratch);
  EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(MoveTextModes, AnyOtherModeBuildsCoordinates) {
  MoveToText(move, text, true, MoveTextMode::coordinates, scratch);
  EXPECT_STREQ(text, "g1f3");
}

TEST_F(MoveTextModes, WithoutDestinationTheTextIsPrinted) {
  CaptureStdout();
  MoveToText(move, nullptr, true, MoveTextMode::build, scratch);
  MoveToText(move, nullptr, false, MoveTextMode::build, scratch);
  EXPECT_EQ(GetCapturedStdout(), "Nf3g1f3");
}

TEST(MoveFromCoordinates, FillsSquaresColourAndKind) {
  const Board board = BoardFrom(startFen);
  EXPECT_EQ(MoveFromCoordinates("e2e4", board, white), BuildMove(12, 28, white, pawn));
  EXPECT_EQ(MoveFromCoordinates("b8c6", board, black), BuildMove(57, 42, black, knight));
}

TEST(MoveFromCoordinates, NeverSetsTheCaptureFlag) {
  const Board board = BoardFrom("4k3/8/8/3n4/8/8/8/3RK3 w -");
  EXPECT_EQ(MoveFromCoordinates("d1d5", board, white), BuildMove(3, 35, white, rook));
}

TEST(MoveFromCoordinates, ReadsPromotionLettersOfEitherCase) {
  const Board board = BoardFrom("8/4P3/8/8/8/8/k7/2K5 w -");
  const Move plain = BuildMove(Square("e7"), Square("e8"), white, pawn);
  const struct {
    char letter;
    Move bits;
  } cases[] = {{'q', 0x40800000U}, {'r', 0x40600000U}, {'b', 0x40400000U}, {'n', 0x40200000U},
               {'Q', 0x40800000U}, {'R', 0x40600000U}, {'B', 0x40400000U}, {'N', 0x40200000U},
               {'k', 0U},          {'+', 0U},          {' ', 0U},          {'p', 0U}};
  for (const auto& c : cases) {
    const std::string text = std::string("e7e8") + c.letter;
    EXPECT_EQ(MoveFromCoordinates(text.c_str(), board, white), plain | c.bits) << text;
  }
}

TEST(MoveFromCoordinates, AnEmptySquareLeavesTheKindOpen) {
  const Board board = BoardFrom(startFen);
  EXPECT_EQ(MovingKind(MoveFromCoordinates("e4e5", board, white)), unknownKind);
  EXPECT_EQ(MovingKind(MoveFromCoordinates("e7e5", board, white)), unknownKind);
}

TEST(MoveFromCoordinates, AnyTextStaysOnTheBoard) {
  const Board board = BoardFrom(startFen);
  for (const char* text : {"", "e", "e2", "e2e", "z9z9", "0000", "\xFF\x80\x01\x7F", "e2e4e5e6"}) {
    const Move move = MoveFromCoordinates(text, board, white);
    EXPECT_LT(FromSquare(move), 64) << text;
    EXPECT_LT(ToSquare(move), 64) << text;
    EXPECT_FALSE(IsCapture(move)) << text;
  }
}

TEST(IsCoordinateMove, AsksForTwoSquaresAtTheStart) {
  for (const char* text : {"e2e4", "a1h8", "h8a1", "e7e8q", "e2e4 more"}) {
    EXPECT_TRUE(IsCoordinateMove(text)) << text;
  }
  for (const char* text : {"", "e", "e2", "e2e", "e2e0", "e2i4", "e9e4", "i2e4", " e2e4", "E2e4",
                           "0000", "e0e4", "`2e4"}) {
    EXPECT_FALSE(IsCoordinateMove(text)) << text;
  }
}

TEST(ElapsedText, ShowsMinutesAndUnpaddedSeconds) {
  const struct {
    std::uint32_t milliseconds;
    const char* text;
  } cases[] = {{0, "0:0"},     {999, "0:0"},    {1000, "0:1"},     {59999, "0:59"},
               {60000, "1:0"}, {125000, "2:5"}, {3600000, "60:0"}, {4294967295U, "71582:47"}};
  for (const auto& c : cases) {
    char text[moveTextCapacity];
    ElapsedText(c.milliseconds, text);
    EXPECT_STREQ(text, c.text);
  }
}

}  // namespace
}  // namespace mirvo
