#include "board/move.h"

#include <gtest/gtest.h>

#include "tests/support/board_support.h"

namespace mirvo {
namespace {

TEST(Coding, SquaresRunFromA1ToH8) {
  EXPECT_EQ(SquareAt(0, 0), 0);
  EXPECT_EQ(SquareAt(0, 7), 7);
  EXPECT_EQ(SquareAt(7, 0), 56);
  EXPECT_EQ(SquareAt(7, 7), 63);
  EXPECT_EQ(RankOf(test::Square("e4")), 3);
  EXPECT_EQ(FileOf(test::Square("e4")), 4);
  EXPECT_EQ(Flip(test::Square("e2")), test::Square("e7"));
}

TEST(Coding, LettersFollowSideAndKind) {
  EXPECT_STREQ(pieceLetters, "PNBRQKpnbrqk");
  EXPECT_EQ(pieceLetters[PieceIndex(white, knight)], 'N');
  EXPECT_EQ(pieceLetters[PieceIndex(black, king)], 'k');
}

TEST(MoveWord, PacksItsFieldsIntoTheirBits) {
  // e7 is 52, f8 is 61.
  const Move move = BuildMove(52, 61, black, queen);
  EXPECT_EQ(move, 52U | 61U << 6 | 1U << 12 | 4U << 15);
  EXPECT_EQ(FromSquare(move), 52);
  EXPECT_EQ(ToSquare(move), 61);
  EXPECT_EQ(MoveColour(move), black);
  EXPECT_EQ(MovingKind(move), queen);
  EXPECT_FALSE(IsCapture(move));
  EXPECT_FALSE(IsPromotion(move));
}

TEST(MoveWord, CapturesAndPawnMovesAreIrreversible) {
  const Move knightMove = BuildMove(1, 18, white, knight);
  EXPECT_TRUE(IsReversible(knightMove));
  EXPECT_TRUE(IsReversible(knightMove | mateMark | checkMark));
  EXPECT_FALSE(IsReversible(knightMove | captureFlag));
  EXPECT_FALSE(IsReversible(BuildMove(8, 16, white, pawn)));
  EXPECT_FALSE(IsReversible(noMove));
}

TEST(MoveWord, FlagsAndMarksHaveTheirOwnBits) {
  EXPECT_EQ(sanFileMark, 1U << 13);
  EXPECT_EQ(mateMark, 1U << 27);
  EXPECT_EQ(checkMark, 1U << 28);
  EXPECT_EQ(promotionFlag, 1U << 30);
  EXPECT_EQ(captureFlag, 1U << 31);
  EXPECT_EQ(sameMoveMask, 0x39FFFU);
}

TEST(MoveWord, PromotionsCarryFlagAndKind) {
  EXPECT_EQ(PromotionBits(queen), 0x40800000U);
  EXPECT_EQ(PromotionBits(rook), 0x40600000U);
  EXPECT_EQ(PromotionBits(bishop), 0x40400000U);
  EXPECT_EQ(PromotionBits(knight), 0x40200000U);
  EXPECT_EQ(PromotionKind(PromotionBits(rook)), rook);
  EXPECT_TRUE(IsPromotion(PromotionBits(rook)));
}

TEST(MoveWord, TheCapturedKindIsReplacedNotAdded) {
  const Move move = WithCaptured(WithCaptured(captureFlag, queen), knight);
  EXPECT_EQ(CapturedKind(move), knight);
  EXPECT_EQ(WithCaptured(move, pawn), captureFlag);
}

TEST(MoveWord, SameMoveIgnoresCaptureAndPromotion) {
  const Move move = BuildMove(48, 57, white, pawn);
  EXPECT_TRUE(SameMove(move, move | captureFlag | PromotionBits(queen)));
  EXPECT_TRUE(SameMove(move, WithCaptured(move, rook) | checkMark | mateMark));
  EXPECT_FALSE(SameMove(move, BuildMove(48, 56, white, pawn)));
  EXPECT_FALSE(SameMove(move, BuildMove(49, 57, white, pawn)));
  EXPECT_FALSE(SameMove(move, BuildMove(48, 57, black, pawn)));
  EXPECT_FALSE(SameMove(move, BuildMove(48, 57, white, knight)));
}

}  // namespace
}  // namespace mirvo
