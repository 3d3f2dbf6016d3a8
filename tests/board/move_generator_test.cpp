#include "board/bb_move_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "board/attacks.h"
#include "board/bits.h"
#include "board/make_move.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::startFen;
using test::TextsOf;

std::string AllTexts(const std::string& fen) {
  Board board = BoardFrom(fen);
  return TextsOf(test::AllMoves(board));
}

std::string CaptureTexts(const std::string& fen) {
  Board board = BoardFrom(fen);
  return TextsOf(test::Captures(board));
}

std::string NonCaptureTexts(const std::string& fen) {
  Board board = BoardFrom(fen);
  return TextsOf(test::NonCaptures(board));
}

bool Offers(Board& board, const std::string& text) {
  const std::vector<Move> moves = test::AllMoves(board);
  return std::any_of(moves.begin(), moves.end(),
                     [&text](Move move) { return test::TextOf(move) == text; });
}

// Generation order.

TEST(MoveOrder, OfTheStartPosition) {
  EXPECT_EQ(CaptureTexts(startFen), "");
  EXPECT_EQ(NonCaptureTexts(startFen),
            "g1h3 g1f3 b1c3 b1a3 h2h3 h2h4 g2g3 g2g4 f2f3 f2f4 e2e3 e2e4 d2d3 d2d4 c2c3 c2c4 "
            "b2b3 b2b4 a2a3 a2a4");
  EXPECT_EQ(NonCaptureTexts("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq"),
            "g8h6 g8f6 b8c6 b8a6 h7h6 h7h5 g7g6 g7g5 f7f6 f7f5 e7e6 e7e5 d7d6 d7d5 c7c6 c7c5 "
            "b7b6 b7b5 a7a6 a7a5");
}

TEST(MoveOrder, PawnCapturesTakeTheHigherSquareFirst) {
  EXPECT_EQ(CaptureTexts("4k3/8/8/3p1p2/4P3/8/8/4K3 w -"), "e4f5 e4d5");
  EXPECT_EQ(CaptureTexts("4k3/8/8/4p3/3P1P2/8/8/4K3 b -"), "e5f4 e5d4");
}

TEST(MoveOrder, PromotionsOfTheFirstTargetComeBeforeThoseOfTheSecond) {
  EXPECT_EQ(CaptureTexts("r1r1k3/1P6/8/8/8/8/8/4K3 w -"),
            "b7c8q b7c8r b7c8b b7c8n b7a8q b7a8r b7a8b b7a8n");
  EXPECT_EQ(CaptureTexts("4k3/8/8/8/8/8/1p6/R1R1K3 b -"),
            "b2c1q b2c1r b2c1b b2c1n b2a1q b2a1r b2a1b b2a1n");
}

TEST(MoveOrder, AnEnPassantCaptureFollowsTheOrdinaryOnesOfItsPawn) {
  EXPECT_EQ(CaptureTexts("4k3/8/1r3r2/1PpP4/8/8/8/4K3 w - c6"), "d5c6 b5c6");
  EXPECT_EQ(CaptureTexts("4k3/8/r1r5/1PpP4/8/8/8/4K3 w - c6"), "d5c6 b5c6 b5a6");
  EXPECT_EQ(CaptureTexts("4k3/8/r7/1Pp5/8/8/8/4K3 w - c6"), "b5a6 b5c6");
}

TEST(MoveOrder, CapturesRunFromPawnsToTheKing) {
  EXPECT_EQ(CaptureTexts("7k/3p4/2p1p3/1pNBp3/2RQ4/2pKP3/8/8 w -"),
            "c5d7 c5e6 d5e6 d5c6 c4c3 d4e5 d4c3 d3c3");
}

TEST(MoveOrder, CastlingComesBeforeThePiecesLongFirst) {
  EXPECT_EQ(NonCaptureTexts("4k3/8/8/8/8/8/8/R3K2R w KQ").substr(0, 14), "e1c1 e1g1 h1h8");
  EXPECT_EQ(NonCaptureTexts("r3k2r/8/8/8/8/8/8/4K3 b kq").substr(0, 9), "e8c8 e8g8");
}

TEST(MoveOrder, PiecesGoFromTheHighestSquareDown) {
  EXPECT_EQ(NonCaptureTexts("8/8/8/8/8/8/8/N6N w -"), "h1g3 h1f2 a1b3 a1c2");
  EXPECT_EQ(NonCaptureTexts("k7/8/8/8/8/1P6/8/B1K5 w -"),
            "a1h8 a1g7 a1f6 a1e5 a1d4 a1c3 a1b2 c1d2 c1c2 c1b2 c1d1 c1b1 b3b4");
}

TEST(MoveOrder, APawnOnTheSeventhRankPromotesInTheNonCapturePass) {
  EXPECT_EQ(CaptureTexts("8/4P3/8/8/8/8/k7/2K5 w -"), "");
  EXPECT_EQ(NonCaptureTexts("8/4P3/8/8/8/8/k7/2K5 w -"),
            "c1d2 c1c2 c1b2 c1d1 c1b1 e7e8q e7e8r e7e8b e7e8n");
}

TEST(MoveOrder, EqualsTheReferenceLists) {
  const std::string prefix = "position: ";
  std::string fen;
  int nChecked = 0;
  for (const std::string& line : test::DataLines("reference/moves.txt")) {
    if (line.starts_with(prefix)) {
      fen = line.substr(prefix.size());
      continue;
    }
    EXPECT_EQ(AllTexts(fen), line) << fen;
    ++nChecked;
  }
  EXPECT_EQ(nChecked, 42);
}

TEST(Generator, AllMovesAreTheCapturesThenTheOthers) {
  test::PlayRandomGames(40, 12, 80, [](Board& board) {
    std::vector<Move> both = test::Captures(board);
    for (const Move move : both) ASSERT_TRUE(IsCapture(move));
    for (const Move move : test::NonCaptures(board)) {
      ASSERT_FALSE(IsCapture(move));
      both.push_back(move);
    }
    ASSERT_EQ(test::AllMoves(board), both);
  });
}

TEST(Generator, PassesAppendToOneList) {
  Board board = BoardFrom("4k3/8/8/3p4/4P3/8/8/4K3 w -");
  BBMoveGenerator2 generator(board, white);
  EXPECT_EQ(generator.count, 0);
  generator.GenerateCaptures();
  EXPECT_EQ(generator.count, 1);
  generator.GenerateNonCaptures();
  EXPECT_EQ(generator.count, 7);
  EXPECT_EQ(test::TextOf(generator.moves[0]), "e4d5");
}

TEST(Generator, WorksThroughTheInterface) {
  Board board = BoardFrom(startFen);
  BBMoveGenerator2 generator(board, white);
  MoveGenerator& interface = generator;
  interface.GenerateAll();
  EXPECT_EQ(generator.count, 20);
}

TEST(Generator, FillsAMoveWordWithoutTheCapturedKind) {
  Board board = BoardFrom("r3k3/1P6/8/8/8/8/8/4K3 w -");
  EXPECT_EQ(test::FindMove(board, "b7a8r"),
            BuildMove(49, 56, white, pawn) | captureFlag | PromotionBits(rook));
  EXPECT_EQ(test::FindMove(board, "e1d1"), BuildMove(4, 3, white, king));
}

TEST(Generator, AKingIsNeverACaptureTarget) {
  for (const char* fen : {"8/8/8/3k4/4P3/8/8/4K3 w -", "8/8/8/8/3kQ3/8/8/4K3 w -",
                          "8/8/8/3k4/8/4N3/8/4K3 w -", "8/8/8/8/8/8/3k4/4K3 w -"}) {
    EXPECT_EQ(CaptureTexts(fen), "") << fen;
  }
}

TEST(Generator, GeneratesForTheSideNotToMove) {
  Board board = BoardFrom(startFen);
  BBMoveGenerator2 generator(board, black);
  generator.GenerateAll();
  EXPECT_EQ(generator.count, 20);
  EXPECT_EQ(test::TextOf(generator.moves[0]), "g8h6");
  EXPECT_EQ(MoveColour(generator.moves[0]), black);
}

// Castling.

struct CastlingCase {
  const char* name;
  const char* fen;
  const char* castling;  // the castling moves offered
};

void PrintTo(const CastlingCase& c, std::ostream* out) { *out << c.name; }

class Castling : public testing::TestWithParam<CastlingCase> {};

TEST_P(Castling, OffersWhatTheRightsAndSquaresAllow) {
  Board board = BoardFrom(GetParam().fen);
  std::vector<Move> castling;
  for (const Move move : test::AllMoves(board)) {
    const int step = FileOf(FromSquare(move)) - FileOf(ToSquare(move));
    if (MovingKind(move) == king && (step > 1 || step < -1)) castling.push_back(move);
  }
  EXPECT_EQ(TextsOf(castling), GetParam().castling);
}

const CastlingCase castlingCases[] = {
    {"BothSides", "4k3/8/8/8/8/8/8/R3K2R w KQ", "e1c1 e1g1"},
    {"BlackBothSides", "r3k2r/8/8/8/8/8/8/4K3 b kq", "e8c8 e8g8"},
    {"OnlyShortRight", "4k3/8/8/8/8/8/8/R3K2R w K", "e1g1"},
    {"OnlyLongRight", "4k3/8/8/8/8/8/8/R3K2R w Q", "e1c1"},
    {"NoRight", "4k3/8/8/8/8/8/8/R3K2R w -", ""},
    {"RightsOfTheOtherSide", "r3k2r/8/8/8/8/8/8/R3K2R w kq", ""},
    {"InCheck", "4r1k1/8/8/8/8/8/8/R3K2R w KQ", ""},
    {"PassingAnAttackedSquareShort", "5rk1/8/8/8/8/8/8/R3K2R w KQ", "e1c1"},
    {"LandingOnAnAttackedSquareShort", "6rk/8/8/8/8/8/8/R3K2R w KQ", "e1c1"},
    {"PassingAnAttackedSquareLong", "3r2k1/8/8/8/8/8/8/R3K2R w KQ", "e1g1"},
    {"LandingOnAnAttackedSquareLong", "2r3k1/8/8/8/8/8/8/R3K2R w KQ", "e1g1"},
    {"AttackedBFile", "1r4k1/8/8/8/8/8/8/R3K2R w KQ", "e1c1 e1g1"},
    {"AttackedRooks", "r5kr/8/8/8/8/8/8/R3K2R w KQ", "e1c1 e1g1"},
    {"PieceOnB1", "6k1/8/8/8/8/8/8/RN2K2R w KQ", "e1g1"},
    {"PieceOnC1", "6k1/8/8/8/8/8/8/R1n1K2R w KQ", "e1g1"},
    {"PieceOnD1", "6k1/8/8/8/8/8/8/R2QK2R w KQ", "e1g1"},
    {"PieceOnF1", "6k1/8/8/8/8/8/8/R3KB1R w KQ", "e1c1"},
    {"PieceOnG1", "6k1/8/8/8/8/8/8/R3K1NR w KQ", "e1c1"},
    {"NoRookOnTheCorner", "6k1/8/8/8/8/8/8/4K3 w KQ", ""},
    {"EnemyRookOnTheCorner", "6k1/8/8/8/8/8/r7/4K2r w KQ", ""},
    {"KingNotOnItsSquare", "6k1/8/8/8/8/8/8/R2K3R w KQ", ""},
    {"AnotherKingCountsAsTheKing", "6k1/8/8/8/8/8/3K4/R3K2R w KQ", ""},
    {"KingOnTheSecondRank", "6k1/8/8/8/8/8/4K3/R6R w KQ", ""},
    {"BlackPassingAnAttackedSquare", "r3k2r/8/8/8/8/8/8/4KR2 b kq", "e8c8"},
    {"PawnsGuardTheSquares", "6k1/8/8/8/8/8/7p/R3K2R w KQ", "e1c1"},
};

INSTANTIATE_TEST_SUITE_P(MoveGenerator, Castling, testing::ValuesIn(castlingCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(CastlingHistory, IsOverOnceTheKingHasMoved) {
  Board board = BoardFrom("4k3/7p/8/8/8/8/7P/R3K2R w KQ");
  test::Play(board, "e1f1 h7h6 f1e1 h6h5");
  EXPECT_FALSE(Offers(board, "e1g1"));
  EXPECT_FALSE(Offers(board, "e1c1"));
}

TEST(CastlingHistory, ARookThatMovedAndCameBackMayNotCastle) {
  Board board = BoardFrom("4k3/7p/8/8/8/8/7P/R3K2R w KQ");
  test::Play(board, "h1g1 h7h6 g1h1 h6h5");
  EXPECT_FALSE(Offers(board, "e1g1"));
  EXPECT_TRUE(Offers(board, "e1c1"));
}

TEST(CastlingHistory, ARookTakenOnItsCornerEndsThatCastling) {
  Board board = BoardFrom("4k2r/8/8/8/8/8/8/R3K2R b KQk");
  test::Play(board, "h8h1");
  EXPECT_FALSE(Offers(board, "e1g1"));
}

TEST(CastlingHistory, HavingCastledRulesItOutWhateverElseTheFlagsSay) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R3K2R w KQ");
  board.castling.hasCastled[white] = 1;
  EXPECT_FALSE(Offers(board, "e1g1"));
  EXPECT_FALSE(Offers(board, "e1c1"));
}

TEST(CastlingHistory, GenerationFillsTheCheckAnswer) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R3K2R w KQ");
  test::NonCaptures(board);
  EXPECT_EQ(board.inCheckCache, 0);
}

// En passant.

TEST(EnPassant, IsOfferedRightAfterTheDoubleStep) {
  Board board = BoardFrom("4k3/8/8/8/3p1p2/8/4P3/4K3 w -");
  test::Play(board, "e2e4");
  EXPECT_EQ(TextsOf(test::Captures(board)), "f4e3 d4e3");
}

TEST(EnPassant, IsOfferedOnAPositionSetUpWithTheSquare) {
  EXPECT_EQ(CaptureTexts("4k3/8/8/2pP4/8/8/8/4K3 w - c6"), "d5c6");
  EXPECT_EQ(CaptureTexts("4k3/8/8/8/2Pp4/8/8/4K3 b - c3"), "d4c3");
}

TEST(EnPassant, IsOnlyForTheOtherSideAndTheRankBehindTheSquare) {
  Board board = BoardFrom("4k3/8/8/2pP4/8/8/8/4K3 w - c6");
  board.epColour = white;
  EXPECT_EQ(TextsOf(test::Captures(board)), "");
  // A pawn on another rank or a distant file does not reach the square.
  EXPECT_EQ(CaptureTexts("4k3/8/8/2p5/3P4/8/8/4K3 w - c6"), "d4c5");
  EXPECT_EQ(CaptureTexts("4k3/8/8/2p1P3/8/8/8/4K3 w - c6"), "");
}

TEST(EnPassant, DoesNotWrapAroundTheBoardEdge) {
  EXPECT_EQ(CaptureTexts("4k3/8/8/p6P/8/8/8/4K3 w - a6"), "");
  EXPECT_EQ(CaptureTexts("4k3/8/8/P6p/8/8/8/4K3 w - h6"), "");
}

TEST(EnPassant, NeedsThePawnBehindTheSquareAndAnEmptySquare) {
  EXPECT_EQ(CaptureTexts("4k3/8/8/3P4/8/8/8/4K3 w - c6"), "");
  EXPECT_EQ(CaptureTexts("4k3/8/8/2nP4/8/8/8/4K3 w - c6"), "");
  // A knight on the square is captured as usual.
  EXPECT_EQ(CaptureTexts("4k3/8/2n5/2pP4/8/8/8/4K3 w - c6"), "d5c6");
  EXPECT_EQ(CaptureTexts("4k3/8/2N5/2pP4/8/8/8/4K3 w - c6"), "");
}

// A double step with no enemy pawn beside it leaves an older square in the
// fields; no capture on it may be offered.
TEST(EnPassant, AStaleSquareIsNotOffered) {
  Board board = BoardFrom("4k3/7p/8/8/3p4/8/4P3/4K3 w -");
  test::Play(board, "e2e4 h7h5");
  EXPECT_EQ(board.epFile, 4);
  EXPECT_FALSE(Offers(board, "d4e3"));
  test::Play(board, "e1d1");
  EXPECT_EQ(board.epFile, 255);
  EXPECT_FALSE(Offers(board, "d4e3"));
}

TEST(EnPassant, AStaleSquareIsNotOfferedTwoPliesLater) {
  Board board = BoardFrom("4k3/7p/8/8/3p4/8/P3P3/4K3 w -");
  test::Play(board, "e2e4 h7h5 a2a4");
  // Black is to move again, with the square of e2e4 still in the fields.
  EXPECT_EQ(board.epFile, 4);
  EXPECT_EQ(board.epColour, white);
  EXPECT_FALSE(Offers(board, "d4e3"));
}

TEST(EnPassant, IsNotOfferedToTheSideThatGetsTheMoveByANullMove) {
  // The pawn on d2 is beside the square, but White made the double step itself.
  Board board = BoardFrom("4k3/8/8/8/3p4/8/3PP3/4K3 w -");
  test::Play(board, "e2e4");
  MakeNullMove(board);
  EXPECT_EQ(TextsOf(test::Captures(board)), "");
  BBMoveGenerator2 notToMove(board, black);
  notToMove.GenerateCaptures();
  EXPECT_EQ(notToMove.count, 0);
  UnmakeNullMove(board);
  EXPECT_EQ(TextsOf(test::Captures(board)), "d4e3");
}

// Odd positions.

TEST(OddPositions, The218MovesOfTheRichestPosition) {
  Board board = BoardFrom("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w -");
  EXPECT_EQ(test::AllMoves(board).size(), 218U);
  EXPECT_EQ(test::LegalMoves(board).size(), 218U);
}

TEST(OddPositions, MovesPastTheCapacityAreDropped) {
  // A ring of queens and two inside: thirty queens with more than 256 moves.
  Board board = BoardFrom("QQQQQQQQ/Q6Q/Q6Q/Q2Q3Q/Q3Q2Q/Q6Q/Q6Q/QQQQQQQQ w -");
  int nMoves = 0;
  for (int square = 0; square < nSquares; ++square) {
    if ((board.occupied & Bit(square)) == 0) continue;
    nMoves += PopCount(QueenAttacks(board, square) & ~board.occupied);
  }
  ASSERT_GT(nMoves, 256);
  const std::vector<Move> moves = test::AllMoves(board);
  EXPECT_EQ(moves.size(), 256U);
  EXPECT_EQ(std::set<Move>(moves.begin(), moves.end()).size(), 256U);
  for (const Move move : moves) {
    EXPECT_NE(QueenAttacks(board, FromSquare(move)) & Bit(ToSquare(move)), 0U);
  }
}

TEST(OddPositions, CapturesFillingTheListLeaveNoRoom) {
  // Queens and knights everywhere: captures and other moves together overflow.
  Board board =
      BoardFrom("Q1n1Q1n1/1Q1n1Q1n/n1Q1n1Q1/1n1Q1n1Q/Q1n1Q1n1/1Q1n1Q1n/n1Q1n1Q1/1n1Q1n1Q w -");
  const std::vector<Move> moves = test::AllMoves(board);
  EXPECT_LE(moves.size(), 256U);
  BBMoveGenerator2 generator(board, white);
  for (int round = 0; round < 6; ++round) generator.GenerateAll();
  EXPECT_EQ(generator.count, 256);
}

TEST(OddPositions, PawnsOnTheFirstAndLastRank) {
  EXPECT_EQ(AllTexts("P6P/8/8/8/8/8/8/8 w -"), "");
  EXPECT_EQ(AllTexts("8/8/8/8/8/8/8/p6p b -"), "");
  // A pawn on its own first rank moves one step.
  EXPECT_EQ(AllTexts("8/8/8/8/8/8/8/P7 w -"), "a1a2");
  EXPECT_EQ(AllTexts("7p/8/8/8/8/8/8/8 b -"), "h8h7");
}

TEST(OddPositions, ABoardWithoutKingsHasMoves) {
  EXPECT_EQ(AllTexts("8/8/8/8/8/8/4P3/8 w KQkq"), "e2e3 e2e4");
  Board board = BoardFrom("8/8/8/8/8/8/4P3/8 w KQkq");
  test::Play(board, "e2e4");
  test::ExpectConsistent(board);
}

TEST(OddPositions, AnEmptyBoardHasNone) {
  EXPECT_EQ(AllTexts("8/8/8/8/8/8/8/8 w KQkq"), "");
  EXPECT_EQ(AllTexts("8/8/8/8/8/8/8/8 b KQkq"), "");
}

}  // namespace
}  // namespace mirvo
