// Coordinate moves as they arrive from outside: legal, illegal and nonsense.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "board/fen.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::ExpectConsistent;
using test::startFen;

std::string NameOf(int square) {
  return {static_cast<char>('a' + square % 8), static_cast<char>('1' + square / 8)};
}

TEST(TextMoves, OrdinaryMovesArePlayed) {
  Board board = BoardFrom(startFen);
  EXPECT_EQ(PlayCoordinateMove("e2e4", board, white), BuildMove(12, 28, white, pawn));
  EXPECT_EQ(PlayCoordinateMove("e7e5", board, black), BuildMove(52, 36, black, pawn));
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR");
}

TEST(TextMoves, ATokenThatIsNoMovePassesTheTurn) {
  for (const char* token : {"0000", "", "e", "e2", "e2e", "i2i4", "e9e4", "e2e9", "E2E4", "e2-e4",
                            "O-O", "(none)", "\xFF\xFF\xFF\xFF"}) {
    Board board = BoardFrom(startFen);
    const std::uint64_t key = board.positionKey;
    EXPECT_EQ(PlayCoordinateMove(token, board, white), noMove) << token;
    EXPECT_EQ(board.sideToMove, black) << token;
    EXPECT_EQ(board.positionKey, key ^ SideKey()) << token;
    EXPECT_EQ(board.undoDepth, 0) << token;
    EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR");
    ExpectConsistent(board);
  }
}

// Two passes return the turn, but not the en-passant capture.
TEST(TextMoves, ATokenThatIsNoMoveEndsEnPassant) {
  for (const char* token : {"0000", "(none)", "O-O", "e4e6", "d5d4"}) {
    Board board = BoardFrom(startFen);
    for (const char* move : {"e2e4", "a7a6", "e4e5", "d7d5"}) {
      PlayCoordinateMove(move, board, board.sideToMove);
    }
    ASSERT_TRUE(EnPassantAvailable(board));
    EXPECT_EQ(PlayCoordinateMove(token, board, white), noMove) << token;
    EXPECT_FALSE(HasEnPassant(board)) << token;
    ExpectConsistent(board);
    PlayCoordinateMove("0000", board, black);
    PlayCoordinateMove("e5d6", board, white);
    EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/1pp1pppp/p2P4/3p4/8/8/PPPP1PPP/RNBQKBNR");
    ExpectConsistent(board);
  }
}

TEST(TextMoves, AFromSquareWithoutOwnPiecePassesTheTurn) {
  for (const char* token : {"e4e5", "e7e5", "e3e2"}) {
    Board board = BoardFrom(startFen);
    EXPECT_EQ(PlayCoordinateMove(token, board, white), noMove) << token;
    EXPECT_EQ(board.sideToMove, black) << token;
    EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR");
  }
}

TEST(TextMoves, TheKindComesFromTheBoardsSideAndTheTrackedSideFillsTheColourBit) {
  Board board = BoardFrom(startFen);
  EXPECT_EQ(PlayCoordinateMove("g1f3", board, black), BuildMove(6, 21, black, knight));
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R");
  EXPECT_EQ(board.sideToMove, black);
  EXPECT_EQ(PlayCoordinateMove("g8f6", board, white), BuildMove(62, 45, white, knight));
}

TEST(TextMoves, WhatFollowsTheMoveIsIgnored) {
  Board board = BoardFrom(startFen);
  EXPECT_NE(PlayCoordinateMove("e2e4xyz", board, white), noMove);
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR");
}

TEST(TextMoves, AnEnPassantCaptureTakesThePawn) {
  Board board = BoardFrom("4k3/8/8/8/3p4/8/4P3/4K3 w -");
  PlayCoordinateMove("e2e4", board, white);
  PlayCoordinateMove("d4e3", board, black);
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/8/8/4p3/8/4K3");
  ExpectConsistent(board);
}

struct SetUpCase {
  const char* name;
  const char* fen;  // three fields: the square is not read
  const char* move;
  const char* after;
};

class EnPassantAfterSetUp : public testing::TestWithParam<SetUpCase> {};

// The board equals one set up from its placement, key and occupancies included.
TEST_P(EnPassantAfterSetUp, LeavesTheBoardOfItsPlacement) {
  Board board = BoardFrom(GetParam().fen);
  PlayCoordinateMove(GetParam().move, board, white);
  EXPECT_EQ(test::PlacementOf(board), GetParam().after);
  ExpectConsistent(board);
  std::string rights = GetParam().fen;
  rights = rights.substr(rights.find(' ') + 2);
  const char side = board.sideToMove == white ? 'w' : 'b';
  Board wanted = BoardFrom(std::string(GetParam().after) + " " + side + rights);
  EXPECT_FALSE(HasEnPassant(board));
  EXPECT_EQ(board.positionKey, wanted.positionKey);
  EXPECT_EQ(board.pawnKey, wanted.pawnKey);
  EXPECT_EQ(board.occupied, wanted.occupied);
  EXPECT_EQ(board.occupiedRot90, wanted.occupiedRot90);
  EXPECT_EQ(board.occupiedDiagA1H8, wanted.occupiedDiagA1H8);
  EXPECT_EQ(board.occupiedDiagA8H1, wanted.occupiedDiagA8H1);
  for (const int colour : {white, black}) {
    EXPECT_EQ(board.sideOccupancy[colour], wanted.sideOccupancy[colour]);
    EXPECT_EQ(board.sideOccupancyNoKing[colour], wanted.sideOccupancyNoKing[colour]);
  }
}

INSTANTIATE_TEST_SUITE_P(
    TextMoves, EnPassantAfterSetUp,
    testing::Values(
        SetUpCase{"White", "rnbqkbnr/1pp1pppp/p7/3pP3/8/8/PPPP1PPP/RNBQKBNR w KQkq", "e5d6",
                  "rnbqkbnr/1pp1pppp/p2P4/8/8/8/PPPP1PPP/RNBQKBNR"},
        SetUpCase{"Black", "4k3/8/8/8/3pP3/8/8/4K3 b -", "d4e3", "4k3/8/8/8/8/4p3/8/4K3"},
        SetUpCase{"TowardsTheHFile", "4k3/8/8/6Pp/8/8/8/4K3 w -", "g5h6", "4k3/8/7P/8/8/8/8/4K3"},
        SetUpCase{"FromTheAFile", "4k3/8/8/8/pP6/8/8/4K3 b -", "a4b3", "4k3/8/8/8/8/1p6/8/4K3"},
        SetUpCase{"BetweenTwoPawns", "4k3/8/8/3pPp2/8/8/8/4K3 w -", "e5f6",
                  "4k3/8/5P2/3p4/8/8/8/4K3"},
        // Not such a capture: the move is made literally.
        SetUpCase{"FromTheFourthRank", "4k3/8/8/8/3pP3/8/8/4K3 w -", "e4d5",
                  "4k3/8/8/3P4/3p4/8/8/4K3"},
        SetUpCase{"FromTheSixthRank", "4k3/8/3pP3/8/8/8/8/4K3 w -", "e6d7",
                  "4k3/3P4/3p4/8/8/8/8/4K3"},
        SetUpCase{"AKnightBeside", "4k3/8/8/3nP3/8/8/8/4K3 w -", "e5d6", "4k3/8/3P4/3n4/8/8/8/4K3"},
        SetUpCase{"AnOwnPawnBeside", "4k3/8/8/3PP3/8/8/8/4K3 w -", "e5d6",
                  "4k3/8/3P4/3P4/8/8/8/4K3"},
        SetUpCase{"StraightAhead", "4k3/8/8/3pP3/8/8/8/4K3 w -", "e5e6", "4k3/8/4P3/3p4/8/8/8/4K3"},
        SetUpCase{"Backwards", "4k3/8/8/3pP3/8/8/8/4K3 w -", "e5d4", "4k3/8/8/3p4/3P4/8/8/4K3"},
        SetUpCase{"TwoFilesAway", "4k3/8/8/2p1P3/8/8/8/4K3 w -", "e5c6", "4k3/8/2P5/2p5/8/8/8/4K3"},
        SetUpCase{"AKing", "4k3/8/8/3pK3/8/8/8/8 w -", "e5d6", "4k3/8/3K4/3p4/8/8/8/8"},
        SetUpCase{"AnEnemyOnTheTarget", "4k3/8/3n4/3pP3/8/8/8/4K3 w -", "e5d6",
                  "4k3/8/3P4/3p4/8/8/8/4K3"},
        SetUpCase{"TheCornersAreNotNeighbours", "4k3/8/8/P7/7p/8/8/4K3 w -", "a5h6",
                  "4k3/8/7P/8/7p/8/8/4K3"}),
    [](const auto& named) { return named.param.name; });

TEST(TextMoves, OnlyTheFirstMoveAfterSetUpTakesEnPassantUntold) {
  // First after another move, then after two passes.
  for (const char* first : {"e1e2 e8e7", "0000 0000"}) {
    Board board = BoardFrom("4k3/8/8/3pP3/8/8/8/4K3 w -");
    const std::string tokens = first;
    PlayCoordinateMove(tokens.substr(0, 4).c_str(), board, white);
    PlayCoordinateMove(tokens.substr(5).c_str(), board, black);
    PlayCoordinateMove("e5d6", board, white);
    EXPECT_EQ(board.pieces[PieceIndex(black, pawn)], test::Squares("d5")) << first;
    EXPECT_EQ(board.pieces[PieceIndex(white, pawn)], test::Squares("d6")) << first;
    ExpectConsistent(board);
  }
}

TEST(TextMoves, GeneratedMovesDoNotTakeEnPassantAfterSetUp) {
  Board board = BoardFrom("4k3/8/8/3pP3/8/8/8/4K3 w -");
  for (const Move move : test::AllMoves(board)) EXPECT_NE(test::TextOf(move), "e5d6");
  // Nor is the same move without text a capture.
  MakeMove(board, MoveFromCoordinates("e5d6", board, white));
  EXPECT_EQ(board.pieces[PieceIndex(black, pawn)], test::Squares("d5"));
}

TEST(TextMoves, CastlingMovesTheRook) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R3K2R w KQ");
  PlayCoordinateMove("e1c1", board, white);
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/8/8/8/8/2KR3R");
}

TEST(TextMoves, IllegalMovesAreMade) {
  Board board = BoardFrom(startFen);
  PlayCoordinateMove("a1a5", board, white);
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/R7/8/8/PPPPPPPP/1NBQKBNR");
  PlayCoordinateMove("d8d2", board, black);
  EXPECT_EQ(test::PlacementOf(board), "rnb1kbnr/pppppppp/8/R7/8/8/PPPqPPPP/1NBQKBNR");
  ExpectConsistent(board);
}

TEST(TextMoves, APieceMayLandOnAnOwnOne) {
  Board board = BoardFrom("4k3/8/8/8/8/8/P7/R3K3 w Q");
  PlayCoordinateMove("a1a2", board, white);
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], test::Squares("a2"));
  EXPECT_EQ(board.pieces[PieceIndex(white, pawn)], test::Squares("a2"));
  EXPECT_TRUE(board.hasOverlaps);
  ExpectConsistent(board);
}

TEST(TextMoves, TwoPiecesOfOneKindBecomeOne) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R3K2R w KQ");
  PlayCoordinateMove("a1h1", board, white);
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], test::Squares("h1"));
  ExpectConsistent(board);
}

TEST(TextMoves, AKingIsNotTaken) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/4RK2 w -");
  PlayCoordinateMove("e1e8", board, white);
  EXPECT_EQ(board.pieces[PieceIndex(black, king)], test::Squares("e8"));
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], test::Squares("e8"));
  ExpectConsistent(board);
}

TEST(TextMoves, AMoveToItsOwnSquareKeepsThePiece) {
  Board board = BoardFrom(startFen);
  PlayCoordinateMove("e2e2", board, white);
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR");
  EXPECT_EQ(board.sideToMove, black);
  ExpectConsistent(board);
}

TEST(TextMoves, CastlingWithoutARookMovesTheKingOnly) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/4K3 w -");
  PlayCoordinateMove("e1g1", board, white);
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/8/8/8/8/6K1");
  ExpectConsistent(board);
}

TEST(TextMoves, CastlingOntoAnEnemyPieceTakesNothing) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R3K1nR w KQ");
  PlayCoordinateMove("e1g1", board, white);
  EXPECT_EQ(board.pieces[PieceIndex(black, knight)], test::Squares("g1"));
  EXPECT_EQ(board.pieces[PieceIndex(white, king)], test::Squares("g1"));
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], test::Squares("a1 f1"));
  ExpectConsistent(board);
}

TEST(TextMoves, TheKingMayStandWhereItsRookLands) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/R4K2 w Q");
  PlayCoordinateMove("f1d1", board, white);
  EXPECT_EQ(board.pieces[PieceIndex(white, king)], test::Squares("d1"));
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], test::Squares("d1"));
  ExpectConsistent(board);
}

// Every pair of squares, with and without a promotion letter, from positions
// with rooks, kings and pawns in awkward places.
class EveryTextMove : public testing::TestWithParam<const char*> {};

TEST_P(EveryTextMove, LeavesAConsistentBoard) {
  const auto start = std::make_unique<Board>(BoardFrom(GetParam()));
  const auto board = std::make_unique<Board>();
  for (int from = 0; from < nSquares; ++from) {
    if (PieceOn(*start, from, start->sideToMove) == noPiece) continue;
    for (int to = 0; to < nSquares; ++to) {
      for (const char* promotion : {"", "q", "n"}) {
        CopyBoard(*board, *start);
        const std::string text = NameOf(from) + NameOf(to) + promotion;
        PlayCoordinateMove(text.c_str(), *board, start->sideToMove);
        ExpectConsistent(*board);
        ASSERT_EQ(board->sideToMove, start->sideToMove ^ 1);
        ASSERT_FALSE(HasFailure()) << text;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    TextMoves, EveryTextMove,
    testing::Values(startFen, test::kiwipeteFen, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq",
                    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq", "R4K1R/8/8/8/8/8/8/R2K3R w KQ",
                    "r2k3r/8/8/4k3/8/8/8/r4k1r b kq",
                    "P3k2p/1P4p1/8/3Pp3/3pP3/8/1p4P1/P3K2p w - e6",
                    "P3k2p/1P4p1/8/3Pp3/3pP3/8/1p4P1/P3K2p b - e3", "KQkq4/8/8/8/8/8/8/RNBrnb2 w -",
                    "8/8/8/8/8/8/8/RNBQ4 w -"));

// Games of random tokens: afterwards generated moves must still be made and unmade.
TEST(TextMoves, IllegalGamesKeepTheBoardUsable) {
  test::Random random(60);
  const auto board = std::make_unique<Board>();
  for (int game = 0; game < 600; ++game) {
    test::SetPosition(*board, game % 3 == 0   ? test::kiwipeteFen
                              : game % 3 == 1 ? startFen
                                              : "r3k2r/pP1p2pp/8/2pP4/2Pp4/8/Pp1P2PP/R3K2R w KQkq");
    std::string played;
    for (int ply = 0; ply < 40; ++ply) {
      // Mostly choose a square of the side to move.
      int from = static_cast<int>(random.Below(nSquares));
      for (int i = 0; i < 20 && PieceOn(*board, from, board->sideToMove) == noPiece; ++i) {
        from = static_cast<int>(random.Below(nSquares));
      }
      const std::string text = NameOf(from) + NameOf(static_cast<int>(random.Below(nSquares))) +
                               (random.Below(3) == 0 ? "q" : "");
      played += text + " ";
      PlayCoordinateMove(text.c_str(), *board, board->sideToMove);
      ExpectConsistent(*board);
      ASSERT_FALSE(HasFailure()) << "game " << game << ": " << played;
    }
    board->inCheckCache = -1;
    const std::vector<Move> moves = test::AllMoves(*board);
    board->inCheckCache = -1;
    const test::Snapshot before(*board);
    for (const Move move : moves) {
      MakeMove(*board, move);
      ExpectConsistent(*board);
      UnmakeMove(*board);
      ASSERT_TRUE(before.SameAs(*board)) << played << test::TextOf(move);
      ASSERT_FALSE(HasFailure()) << played << test::TextOf(move);
    }
  }
}

}  // namespace
}  // namespace mirvo
