#include "board/board.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "board/fen.h"
#include "board/key_history.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::ExpectConsistent;
using test::kiwipeteFen;
using test::startFen;

constexpr std::uint64_t startKey = 0x463B96181691FC9CULL;

class BoardSetUp : public testing::Test {
 protected:
  BoardSetUp() { test::PrepareTables(); }
};

TEST_F(BoardSetUp, AFreshBoardHoldsTheInitialPosition) {
  const Board board;
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR");
  EXPECT_EQ(board.sideToMove, white);
  EXPECT_EQ(board.epRank, 255);
  EXPECT_EQ(board.epFile, 255);
  EXPECT_EQ(board.epColour, 255);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.historyIndex, 0);
  EXPECT_EQ(board.inCheckCache, -1);
  ExpectConsistent(board);
}

TEST_F(BoardSetUp, EveryBoardOfThePoolStartsAtTheInitialPosition) {
  for (const Board& board : BoardPool) EXPECT_EQ(board.positionKey, startKey);
}

TEST_F(BoardSetUp, ResetToStartSetsTheInitialPosition) {
  Board board = BoardFrom("8/8/4k3/8/8/8/4K3/8 b -");
  test::Play(board, "e6e5 e2e3");
  ResetToStart(board);
  EXPECT_EQ(board.pieces[PieceIndex(white, pawn)], 0x000000000000FF00ULL);
  EXPECT_EQ(board.pieces[PieceIndex(white, knight)], 0x42ULL);
  EXPECT_EQ(board.pieces[PieceIndex(white, bishop)], 0x24ULL);
  EXPECT_EQ(board.pieces[PieceIndex(white, rook)], 0x81ULL);
  EXPECT_EQ(board.pieces[PieceIndex(white, queen)], 0x08ULL);
  EXPECT_EQ(board.pieces[PieceIndex(white, king)], 0x10ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, pawn)], 0x00FF000000000000ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, knight)], 0x4200000000000000ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, bishop)], 0x2400000000000000ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, rook)], 0x8100000000000000ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, queen)], 0x0800000000000000ULL);
  EXPECT_EQ(board.pieces[PieceIndex(black, king)], 0x1000000000000000ULL);
  EXPECT_EQ(board.sideOccupancy[white], 0xFFFFULL);
  EXPECT_EQ(board.sideOccupancy[black], 0xFFFF000000000000ULL);
  EXPECT_EQ(board.sideOccupancyNoKing[white], 0xFFEFULL);
  EXPECT_EQ(board.sideOccupancyNoKing[black], 0xEFFF000000000000ULL);
  EXPECT_EQ(board.occupied, 0xFFFF00000000FFFFULL);
  EXPECT_EQ(board.kingFile[white], 4);
  EXPECT_EQ(board.kingRank[white], 0);
  EXPECT_EQ(board.kingFile[black], 4);
  EXPECT_EQ(board.kingRank[black], 7);
  EXPECT_EQ(board.sideToMove, white);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.plyCount, 0);
  EXPECT_EQ(board.historyIndex, 0);
  EXPECT_EQ(board.positionKey, startKey);
  EXPECT_EQ(KeyHistory[0], startKey);
  EXPECT_EQ(board.inCheckCache, -1);
  for (int side = 0; side < nSides; ++side) {
    EXPECT_EQ(board.castling.hasCastled[side], 0);
    EXPECT_EQ(board.castling.kingMoved[side], 0);
    EXPECT_EQ(board.castling.queenRookMoved[side], 0);
    EXPECT_EQ(board.castling.kingRookMoved[side], 0);
  }
  ExpectConsistent(board);
}

TEST_F(BoardSetUp, ResetToStartKeepsTheEnPassantFields) {
  Board board;
  board.epFile = 4;
  board.epRank = 2;
  board.epColour = white;
  ResetToStart(board);
  EXPECT_EQ(board.epFile, 4);
  EXPECT_EQ(board.epRank, 2);
  EXPECT_EQ(board.epColour, white);
  // The key counts it, as ComputeKey does.
  EXPECT_EQ(board.positionKey, startKey ^ Random64[772 + 4]);
  ClearEnPassant(board);
  EXPECT_EQ(board.epFile, 255);
  EXPECT_EQ(board.epRank, 255);
}

TEST_F(BoardSetUp, ClearBoardEmptiesOnlyThePosition) {
  Board board = BoardFrom(kiwipeteFen);
  board.sideToMove = black;
  board.epFile = 3;
  board.epRank = 5;
  board.epColour = black;
  board.plyCount = 9;
  board.nullMoveMade = 1;
  board.hasOverlaps = true;
  board.undoDepth = 4;
  board.historyIndex = 17;
  board.positionKey = 99;
  board.inCheckCache = 1;
  std::fill_n(&board.castling.hasCastled[0], 2, std::uint8_t{1});
  ClearBoard(board);
  for (const std::uint64_t set : board.pieces) EXPECT_EQ(set, 0U);
  EXPECT_EQ(board.occupied, 0U);
  EXPECT_EQ(board.occupiedRot90, 0U);
  EXPECT_EQ(board.occupiedDiagA1H8, 0U);
  EXPECT_EQ(board.occupiedDiagA8H1, 0U);
  EXPECT_EQ(board.sideOccupancy[white] | board.sideOccupancy[black], 0U);
  EXPECT_EQ(board.sideOccupancyNoKing[white] | board.sideOccupancyNoKing[black], 0U);
  for (int side = 0; side < nSides; ++side) {
    EXPECT_EQ(board.castling.hasCastled[side], 0);
    EXPECT_EQ(board.castling.kingMoved[side], 0);
    EXPECT_EQ(board.castling.queenRookMoved[side], 0);
    EXPECT_EQ(board.castling.kingRookMoved[side], 0);
  }
  EXPECT_EQ(board.plyCount, 0);
  EXPECT_EQ(board.nullMoveMade, 0);
  EXPECT_FALSE(board.hasOverlaps);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.inCheckCache, -1);
  // Keeps the fields that callers set themselves.
  EXPECT_EQ(board.sideToMove, black);
  EXPECT_EQ(board.epFile, 3);
  EXPECT_EQ(board.epRank, 5);
  EXPECT_EQ(board.epColour, black);
  EXPECT_EQ(board.kingFile[white], 4);
  EXPECT_EQ(board.kingRank[black], 7);
  EXPECT_EQ(board.historyIndex, 17);
  EXPECT_EQ(board.positionKey, 99U);
}

TEST_F(BoardSetUp, TheKingSquareIsThatOfTheHighestKing) {
  Board board = BoardFrom("8/8/2k5/6k1/8/3K4/8/K7 w -");
  EXPECT_EQ(KingSquare(board, white), test::Square("d3"));
  EXPECT_EQ(KingSquare(board, black), test::Square("c6"));
}

TEST_F(BoardSetUp, ASideWithoutKingHasAKingSquareOnTheBoard) {
  const Board board = BoardFrom("8/8/8/8/8/8/4P3/8 w -");
  for (int side = 0; side < nSides; ++side) {
    EXPECT_GE(KingSquare(board, side), 0);
    EXPECT_LT(KingSquare(board, side), 64);
  }
  ExpectConsistent(board);
}

TEST_F(BoardSetUp, TwoPiecesOnASquareOverlap) {
  Board board;
  DetectOverlaps(board);
  EXPECT_FALSE(board.hasOverlaps);
  board.pieces[PieceIndex(white, queen)] |= test::Squares("e7");
  DetectOverlaps(board);
  EXPECT_TRUE(board.hasOverlaps);
  board.pieces[PieceIndex(black, pawn)] &= ~test::Squares("e7");
  DetectOverlaps(board);
  EXPECT_FALSE(board.hasOverlaps);
}

TEST(PieceOn, NamesTheKindOfOneSide) {
  const Board board = BoardFrom(startFen);
  const char* const squares[] = {"a2", "b1", "c1", "a1", "d1", "e1"};
  const int kinds[] = {pawn, knight, bishop, rook, queen, king};
  for (int i = 0; i < 6; ++i) {
    const int square = test::Square(squares[i]);
    EXPECT_EQ(PieceOn(board, square, white), kinds[i]) << squares[i];
    EXPECT_EQ(PieceOn(board, square, black), -1) << squares[i];
    EXPECT_EQ(PieceOn(board, Flip(square), black), kinds[i]) << squares[i];
    EXPECT_EQ(PieceOn(board, Flip(square), white), -1) << squares[i];
  }
  EXPECT_EQ(PieceOn(board, test::Square("e4"), white), -1);
  EXPECT_EQ(PieceOn(board, test::Square("e4"), black), -1);
}

TEST(PieceOn, LooksForBishopsBeforeKnights) {
  Board board = BoardFrom("4k3/8/8/8/8/8/8/4K3 w -");
  const Bitboard d4 = test::Squares("d4");
  const int order[] = {king, queen, rook, knight, bishop, pawn};
  for (const int kind : order) {
    board.pieces[PieceIndex(white, kind)] |= d4;
    EXPECT_EQ(PieceOn(board, test::Square("d4"), white), kind);
  }
}

class CopiedBoard : public testing::Test {
 protected:
  CopiedBoard() { test::PrepareTables(); }
  std::unique_ptr<Board> source = std::make_unique<Board>();
  std::unique_ptr<Board> copy = std::make_unique<Board>();
};

TEST_F(CopiedBoard, EqualsItsSourceInEveryField) {
  test::SetPosition(*source, kiwipeteFen);
  test::Play(*source, "e1g1 a6e2 f3e2 c7c5");
  source->inCheckCache = 0;
  source->nullMoveMade = 1;
  CopyBoard(*copy, *source);
  EXPECT_TRUE(test::SameFields(*source, *copy));
  ExpectConsistent(*copy);
}

TEST_F(CopiedBoard, CanUnmakeTheMovesOfTheSource) {
  test::SetPosition(*source, kiwipeteFen);
  const auto before = std::make_unique<Board>(*source);
  test::Play(*source, "e5f7 e7f7 e1c1 e8c8 d5e6");
  CopyBoard(*copy, *source);
  for (int i = 0; i < 5; ++i) UnmakeMove(*copy);
  EXPECT_TRUE(test::SameFields(*before, *copy));
  EXPECT_EQ(source->undoDepth, 5);
}

TEST_F(CopiedBoard, RecomputesKeyAndOccupancies) {
  test::SetPosition(*source, kiwipeteFen);
  source->positionKey = 1;
  source->occupied = 2;
  source->occupiedRot90 = 3;
  CopyBoard(*copy, *source);
  ExpectConsistent(*copy);
}

TEST_F(CopiedBoard, KeepsItsOverlaps) {
  source->pieces[PieceIndex(white, queen)] |= test::Squares("e7");
  DetectOverlaps(*source);
  CopyBoard(*copy, *source);
  EXPECT_TRUE(copy->hasOverlaps);
}

TEST_F(CopiedBoard, LeavesItsSourceAlone) {
  test::SetPosition(*source, startFen);
  CopyBoard(*copy, *source);
  test::Play(*copy, "e2e4");
  EXPECT_EQ(source->positionKey, startKey);
  EXPECT_EQ(source->undoDepth, 0);
}

}  // namespace
}  // namespace mirvo
