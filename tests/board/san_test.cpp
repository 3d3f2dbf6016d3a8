#include "board/san.h"

#include <gtest/gtest.h>

#include "board/notation.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::Square;

std::string SanOf(Move move) {
  char text[moveTextCapacity];
  MoveToSan(move, text);
  return text;
}

Move Of(const char* from, const char* to, int kind) {
  return BuildMove(Square(from), Square(to), white, kind);
}

TEST(MoveToSan, PawnMovesAndCaptures) {
  EXPECT_EQ(SanOf(Of("e2", "e4", pawn)), "e4");
  EXPECT_EQ(SanOf(Of("e4", "d5", pawn) | captureFlag), "exd5");
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | PromotionBits(queen)), "e8=Q");
  EXPECT_EQ(SanOf(Of("a7", "b8", pawn) | captureFlag | PromotionBits(queen)), "axb8=Q");
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | PromotionBits(rook)), "e8=R");
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | PromotionBits(bishop)), "e8=B");
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | PromotionBits(knight)), "e8=N");
  // The kind alone, without the flag, is no promotion.
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | Move{queen} << 21), "e8");
}

TEST(MoveToSan, PieceMovesAndCaptures) {
  EXPECT_EQ(SanOf(Of("g1", "f3", knight)), "Nf3");
  EXPECT_EQ(SanOf(Of("f1", "b5", bishop)), "Bb5");
  EXPECT_EQ(SanOf(Of("a1", "a8", rook) | captureFlag), "Rxa8");
  EXPECT_EQ(SanOf(Of("d1", "h5", queen)), "Qh5");
  EXPECT_EQ(SanOf(Of("e1", "e2", king)), "Ke2");
  EXPECT_EQ(SanOf(Of("e1", "d2", king) | captureFlag), "Kxd2");
}

TEST(MoveToSan, NeverTellsTwoPiecesApart) {
  Board board = test::BoardFrom("4k3/8/8/8/8/5N2/8/1N2K3 w -");
  EXPECT_EQ(SanOf(test::FindMove(board, "b1d2")), "Nd2");
  EXPECT_EQ(SanOf(test::FindMove(board, "f3d2")), "Nd2");
}

TEST(MoveToSan, CastlingByTheKingsTwoFiles) {
  EXPECT_EQ(SanOf(Of("e1", "g1", king)), "O-O");
  EXPECT_EQ(SanOf(Of("e1", "c1", king)), "O-O-O");
  EXPECT_EQ(SanOf(Of("e8", "g8", king)), "O-O");
  EXPECT_EQ(SanOf(Of("e8", "c8", king) | checkMark), "O-O-O+");
  EXPECT_EQ(SanOf(Of("e1", "g1", king) | checkMark), "O-O+");
}

TEST(MoveToSan, ThePlusFollowsTheCheckMarkAlone) {
  EXPECT_EQ(SanOf(Of("d1", "h5", queen) | checkMark), "Qh5+");
  EXPECT_EQ(SanOf(Of("e7", "e8", pawn) | PromotionBits(queen) | checkMark), "e8=Q+");
  // Mate has no sign of its own.
  EXPECT_EQ(SanOf(Of("d1", "h5", queen) | mateMark), "Qh5");
}

// The reader. `fields` spells the parts a text states: kind letter, from-file,
// from-rank, "x", to-square, "+".
Move Partial(int kind, int to) { return BuildMove(0, to, 0, kind); }

struct SanCase {
  const char* text;
  Move expected;
};

TEST(SanToPartialMove, PawnMoves) {
  const SanCase cases[] = {
      {"e4", Partial(pawn, Square("e4"))},
      {"h8", Partial(pawn, Square("h8"))},
      {"e4+", Partial(pawn, Square("e4")) | checkMark},
      {"e8=Q", Partial(pawn, Square("e8"))},
      {"e8Q", Partial(pawn, Square("e8"))},
      {"e8=Q+", Partial(pawn, Square("e8")) | checkMark},
      {"e4#", Partial(pawn, Square("e4"))},
      {"e4!", Partial(pawn, Square("e4"))},
  };
  for (const SanCase& c : cases) EXPECT_EQ(SanToPartialMove(c.text, white), c.expected) << c.text;
}

TEST(SanToPartialMove, APawnCaptureStatesItsTargetOnly) {
  EXPECT_EQ(SanToPartialMove("exd5", white), Partial(pawn, Square("d5")));
  EXPECT_EQ(SanToPartialMove("exd5+", black), Partial(pawn, Square("d5")) | checkMark);
  EXPECT_EQ(SanToPartialMove("axb8=Q", white), Partial(pawn, Square("b8")));
}

TEST(SanToPartialMove, APawnCaptureWithAFullFromSquare) {
  // The letter becomes the origin file, the digit the origin rank.
  EXPECT_EQ(SanToPartialMove("e4xd5", white), Partial(pawn, Square("d5")) |
                                                  static_cast<Move>(Square("e4")) | sanFileMark |
                                                  captureFlag);
}

TEST(SanToPartialMove, APawnMoveWithAFullFromSquareTakesTheLastSquare) {
  EXPECT_EQ(SanToPartialMove("e2e4", white), Partial(pawn, Square("e4")));
  EXPECT_EQ(SanToPartialMove("e2-e4", white), Partial(pawn, Square("e4")));
  EXPECT_EQ(SanToPartialMove("h7g6", white), Partial(pawn, Square("g6")));
}

TEST(SanToPartialMove, PieceMoves) {
  const SanCase cases[] = {
      {"Nf3", Partial(knight, Square("f3"))},
      {"Bb5", Partial(bishop, Square("b5"))},
      {"Ra8", Partial(rook, Square("a8"))},
      {"Qh5", Partial(queen, Square("h5"))},
      {"Ke2", Partial(king, Square("e2"))},
      {"Qh5+", Partial(queen, Square("h5")) | checkMark},
      {"Qh5#", Partial(queen, Square("h5"))},
      {"Nxd2", Partial(knight, Square("d2"))},
      {"Nxd2+", Partial(knight, Square("d2")) | checkMark},
  };
  for (const SanCase& c : cases) EXPECT_EQ(SanToPartialMove(c.text, white), c.expected) << c.text;
  EXPECT_EQ(SanToPartialMove("Nf3", white) & 0x38000U, 0x8000U);
  EXPECT_EQ(SanToPartialMove("Bb5", white) & 0x38000U, 0x10000U);
  EXPECT_EQ(SanToPartialMove("Ra8", white) & 0x38000U, 0x18000U);
  EXPECT_EQ(SanToPartialMove("Qh5", white) & 0x38000U, 0x20000U);
  EXPECT_EQ(SanToPartialMove("Ke2", white) & 0x38000U, 0x28000U);
}

TEST(SanToPartialMove, DisambiguatorsFillTheFromSquare) {
  const Move fromFileB = Move{1} | sanFileMark;
  const SanCase cases[] = {
      {"Nbd2", Partial(knight, Square("d2")) | fromFileB},
      {"Nbd2+", Partial(knight, Square("d2")) | fromFileB | checkMark},
      {"Nbxd2", Partial(knight, Square("d2")) | fromFileB},
      {"N1d2", Partial(knight, Square("d2"))},  // rank 1 is the value 0
      {"N3d2", Partial(knight, Square("d2")) | Move{2} << 3},
      {"R1e2", Partial(rook, Square("e2"))},
      {"R8e2+", Partial(rook, Square("e2")) | Move{7} << 3 | checkMark},
      {"R8xe2", Partial(rook, Square("e2")) | Move{7} << 3},
      {"Qh4e1", Partial(queen, Square("e1")) | Move{7} | sanFileMark},
  };
  for (const SanCase& c : cases) EXPECT_EQ(SanToPartialMove(c.text, white), c.expected) << c.text;
}

TEST(SanToPartialMove, SignsBeforeTheSquareStartTheDestination) {
  const SanCase cases[] = {
      {"xe4", Partial(pawn, Square("e4")) | captureFlag},
      {"=e4", Partial(pawn, Square("e4"))},
      {"+e4", Partial(pawn, Square("e4")) | checkMark},
      {"4xe5", Partial(pawn, Square("e5")) | Move{3} << 3 | captureFlag},
  };
  for (const SanCase& c : cases) EXPECT_EQ(SanToPartialMove(c.text, white), c.expected) << c.text;
}

TEST(SanToPartialMove, TheLastFromFileAndFromRankNamedCount) {
  EXPECT_EQ(SanToPartialMove("hgxe5", white),
            Partial(pawn, Square("e5")) | Move{6} | sanFileMark | captureFlag);
  EXPECT_EQ(SanToPartialMove("85xe6", white),
            Partial(pawn, Square("e6")) | Move{4} << 3 | captureFlag);
}

TEST(SanToPartialMove, ReadingEndsAtThePlusOfTheDestination) {
  EXPECT_EQ(SanToPartialMove("Nbd2+e4", white),
            Partial(knight, Square("d2")) | Move{1} | sanFileMark | checkMark);
}

TEST(SanToPartialMove, TwoCharactersNeverNameAPiece) {
  EXPECT_EQ(MovingKind(SanToPartialMove("N3", white)), pawn);
  EXPECT_EQ(MovingKind(SanToPartialMove("Kd", white)), pawn);
}

TEST(SanToPartialMove, CastlingOfBothSides) {
  EXPECT_EQ(SanToPartialMove("O-O", white), Partial(king, Square("g1")));
  EXPECT_EQ(SanToPartialMove("O-O", black), Partial(king, Square("g8")));
  EXPECT_EQ(SanToPartialMove("O-O-O", white), Partial(king, Square("c1")));
  EXPECT_EQ(SanToPartialMove("O-O-O", black), Partial(king, Square("c8")));
}

TEST(SanToPartialMove, ShortCastlingWithASignReadsAsLong) {
  for (const char* text : {"O-O+", "O-O#", "O-O!", "O-O-O+"}) {
    EXPECT_EQ(SanToPartialMove(text, white), Partial(king, Square("c1"))) << text;
  }
}

TEST(SanToPartialMove, NothingAndNonsenseGiveNoMoveOrAHarmlessOne) {
  EXPECT_EQ(SanToPartialMove("", white), noMove);
  for (const char* text : {"N", "Nb", "x", "+", "=", "exd", "Rx", "1234567890", "O", "zzzzzzzz",
                           "\xFF\x80", "Nbdfhaceg", "e.p.", "..."}) {
    const Move move = SanToPartialMove(text, black);
    EXPECT_LT(ToSquare(move), 64) << text;
    EXPECT_LE(MovingKind(move), king) << text;
    EXPECT_FALSE(IsPromotion(move)) << text;
  }
}

TEST(MoveTextOf, LeavesAnnotationMarksAndTheNoteOfEnPassantOut) {
  const struct {
    const char* word;
    const char* text;
  } cases[] = {
      {"Rh8!", "Rh8"},
      {"Rh8!?", "Rh8"},
      {"Rh8?!??", "Rh8"},
      {"Rh8+!!", "Rh8+"},
      {"Rh8#!", "Rh8#"},
      {"e8=Q+!", "e8=Q+"},
      {"O-O!", "O-O"},
      {"O-O-O?", "O-O-O"},
      {"exd6e.p.", "exd6"},
      {"exd6e.p", "exd6"},
      {"exd6ep", "exd6"},
      {"exd6e.p.+", "exd6"},
      {"exd6e.p.#!", "exd6"},
      {"exd6e.p.!", "exd6"},
      {"exd6!e.p.", "exd6"},
      {"exd6+e.p.", "exd6+"},
      {"exd6#ep?", "exd6#"},
      {"e.p.", ""},
      {"e.p", ""},
      {"ep", ""},
      {"e.p.+", ""},
      {"e.p.#", ""},
      {"e.p.!?", ""},
      {"ep!", ""},
      {"!?", ""},
      {"", ""},
      // Marks inside a word, check signs and other words stay.
      {"R!h8", "R!h8"},
      {"!Rh8", "!Rh8"},
      {"Rh8", "Rh8"},
      {"exd6+", "exd6+"},
      {"e8=Q", "e8=Q"},
      {"step", "step"},
      {"e.p.x", "e.p.x"},
      {"e.", "e."},
      {"Rep", "Rep"},
      {"=ep!", "=ep"},
  };
  for (const auto& [word, text] : cases) EXPECT_EQ(MoveTextOf(word), text) << word;
}

// The reader understands the written text of every generated move.
TEST(SanRoundTrip, TheReaderFindsKindAndTargetOfWrittenMoves) {
  test::PlayRandomGames(80, 12, 100, [](Board& board) {
    for (const Move move : test::AllMoves(board)) {
      for (const Move mark : {Move{0}, checkMark}) {
        const std::string text = SanOf(move | mark);
        if (text == "O-O+") continue;
        const Move read = SanToPartialMove(text.c_str(), board.sideToMove);
        ASSERT_EQ(MovingKind(read), MovingKind(move)) << text;
        ASSERT_EQ(ToSquare(read), ToSquare(move)) << text;
        if (text[0] != 'O') {
          ASSERT_EQ(read & checkMark, mark) << text;
        }
      }
    }
  });
}

}  // namespace
}  // namespace mirvo
